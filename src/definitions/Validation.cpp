#include <MaterialTranslation/Validation.h>

#include "definitions/DataLibrary.h"
#include "definitions/ElementChecks.h"
#include "definitions/FileCheck.h"
#include "definitions/ReadDocument.h"

namespace vyr::MaterialTranslation
{

const char* validationCodeName(ValidationCode code)
{
    switch (code)
    {
    case ValidationCode::Unreadable:
        return "unreadable";
    case ValidationCode::Rule:
        return "materialx-rule";
    case ValidationCode::ValueInvalid:
        return "value-invalid";
    case ValidationCode::ValueRange:
        return "value-range";
    case ValidationCode::ChoiceUnknown:
        return "choice-unknown";
    case ValidationCode::NodeUndefined:
        return "node-undefined";
    case ValidationCode::InputUnbound:
        return "input-unbound";
    case ValidationCode::ColorSpaceUnknown:
        return "color-space-unknown";
    case ValidationCode::UnitTypeUnknown:
        return "unit-type-unknown";
    case ValidationCode::UnitUnknown:
        return "unit-unknown";
    case ValidationCode::UnitMissing:
        return "unit-missing";
    case ValidationCode::UnitMisfit:
        return "unit-misfit";
    case ValidationCode::FileMissing:
        return "file-missing";
    case ValidationCode::MaterialMissing:
        return "material-missing";
    case ValidationCode::GraphEmpty:
        return "graph-empty";
    }
    return "unknown";
}

std::vector<ValidationMessage> validateDocument(const MaterialX::DocumentPtr& document,
                                                const ValidationOptions& options)
{
    const auto definitions = definitions::definitionsOf(options.definitions);
    const definitions::DataLibraryScope scope(document, definitions->library);
    std::vector<ValidationMessage> messages;
    definitions::CheckContext context{*definitions,
                                      definitions::searchPathOf(*document, options.searchFolders),
                                      !document->validate(), messages};
    definitions::checkElements(document, context);
    return messages;
}

std::vector<ValidationMessage> validateFile(const std::filesystem::path& file,
                                            const ValidationOptions& options)
{
    MaterialX::DocumentPtr document;
    try
    {
        document = definitions::readDocument(file);
    }
    catch (const definitions::UnreadableDocument& error)
    {
        return {{"", ValidationCode::Unreadable, error.what()}};
    }
    return validateDocument(document, options);
}

} // namespace vyr::MaterialTranslation
