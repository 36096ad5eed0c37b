#pragma once

#include <string>

#include <MaterialXCore/Document.h>

#include <MaterialTranslation/Validation.h>

#include "Commands.h"
#include "Outcome.h"
#include "Paths.h"

namespace vyr::cli
{

/// Whether the definitions of nodes can be read, where the command needs them; standard error says why
/// not. They are read once, here, before anything is written.
bool definitionsAreThere(const ConvertCommand& command);

/// Brings a translated document into the form that the command asks for, and checks it when that is
/// asked for too. The outcome gets a warning for what has no place in that form.
/// @return whether the document may be written; if not, the outcome says why.
bool bringIntoForm(const MaterialX::DocumentPtr& document, const ConvertCommand& command,
                   const OutputFolder& folder, Outcome& outcome);

/// "path: text"; the text alone for the document as a whole.
std::string withPath(const MaterialTranslation::ValidationMessage& message);

} // namespace vyr::cli
