#include <MaterialTranslation/NodeForms.h>

#include "definitions/DataLibrary.h"
#include "definitions/Embedding.h"
#include "definitions/Flattening.h"
#include "definitions/StandardUnits.h"

namespace vyr::MaterialTranslation
{

std::vector<ValidationMessage> applyNodeForm(const MaterialX::DocumentPtr& document, NodeForm form)
{
    using definitions::UnitScope;
    const auto definitions = definitions::definitionsOf(DefinitionSet::All);
    const definitions::DataLibraryScope scope(document, definitions->library);
    std::vector<ValidationMessage> messages;
    definitions::removeEmbedded(document);
    if (form == NodeForm::Embed)
        definitions::embedDefinitions(document, *definitions);
    if (form == NodeForm::Standard)
        definitions::flattenNodes(document, *definitions, messages);
    if (form != NodeForm::Reference)
        definitions::useStandardUnits(
            document, form == NodeForm::Standard ? UnitScope::All : UnitScope::Lacking,
            *definitions, messages);
    return messages;
}

} // namespace vyr::MaterialTranslation
