#pragma once

#include <vector>

#include <MaterialXCore/Document.h>
#include <MaterialXFormat/File.h>

#include <MaterialTranslation/Validation.h>

#include "definitions/DataLibrary.h"

namespace vyr::MaterialTranslation::definitions
{

/// The checks of one document, which has its data library. All that it refers to is borrowed.
struct CheckContext
{
    const Definitions& definitions;
    MaterialX::FileSearchPath searchPath;
    /// Whether MaterialX's own validation finds anything; it says so for the whole document at the cost
    /// of asking it once.
    bool breaksRules = false;
    std::vector<ValidationMessage>& messages;
};

/// Checks an element and everything below it.
void checkElements(const MaterialX::ElementPtr& element, CheckContext& context);

} // namespace vyr::MaterialTranslation::definitions
