#pragma once

#include <vector>

#include <MaterialXCore/Document.h>

#include <MaterialTranslation/Validation.h>

#include "definitions/DataLibrary.h"

namespace vyr::MaterialTranslation::definitions
{

/// Replaces the kvor nodes of a document by the standard nodes that they are made of.
/// @param document has its data library, and no kvor definitions of its own.
void flattenNodes(const MaterialX::DocumentPtr& document, const Definitions& definitions,
                  std::vector<ValidationMessage>& messages);

} // namespace vyr::MaterialTranslation::definitions
