#pragma once

#include <vector>

#include <MaterialXCore/Document.h>

#include <MaterialTranslation/Validation.h>

namespace vyr::MaterialTranslation::definitions
{

/// What MaterialX's own validation says about an element, without what it says about its children.
/// @param element of a document that has its data library.
void addRuleMessages(const MaterialX::ElementPtr& element,
                     std::vector<ValidationMessage>& messages);

} // namespace vyr::MaterialTranslation::definitions
