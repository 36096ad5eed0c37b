#include "DocumentForm.h"

#include <exception>
#include <vector>

#include "Console.h"

namespace vyr::cli
{
namespace
{

using MaterialTranslation::NodeForm;
using MaterialTranslation::ValidationMessage;

/// The other forms are for readers that have MaterialX's definitions only.
MaterialTranslation::ValidationOptions validationOptions(const ConvertCommand& command,
                                                         const OutputFolder& folder)
{
    MaterialTranslation::ValidationOptions options;
    options.searchFolders = {folder.absolute};
    if (command.nodes != NodeForm::Reference)
        options.definitions = MaterialTranslation::DefinitionSet::Standard;
    return options;
}

} // namespace

bool definitionsAreThere(const ConvertCommand& command)
{
    try
    {
        if (command.validate || command.nodes != NodeForm::Reference)
            MaterialTranslation::definitionLibrary();
        return true;
    }
    catch (const std::exception& error)
    {
        complain(std::string("vyr-mtlx: ") + error.what());
        return false;
    }
}

bool bringIntoForm(const MaterialX::DocumentPtr& document, const ConvertCommand& command,
                   const OutputFolder& folder, Outcome& outcome)
{
    if (command.nodes != NodeForm::Reference)
        for (const ValidationMessage& message : applyNodeForm(document, command.nodes))
            outcome.warnings.push_back(
                {validationCodeName(message.code), message.path, message.text});
    if (!command.validate)
        return true;
    const std::vector<ValidationMessage> messages =
        validateDocument(document, validationOptions(command, folder));
    for (const ValidationMessage& message : messages)
        outcome.message +=
            (outcome.message.empty() ? "invalid document: " : "; ") + withPath(message);
    return messages.empty();
}

std::string withPath(const ValidationMessage& message)
{
    return message.path.empty() ? message.text : message.path + ": " + message.text;
}

} // namespace vyr::cli
