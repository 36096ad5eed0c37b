#pragma once

#include <MaterialXCore/Document.h>

#include "definitions/DataLibrary.h"

namespace vyr::MaterialTranslation::definitions
{

/// Copies the definitions and graphs of the kvor nodes that a document uses into it, with those that they
/// use in turn, behind everything else and in the library's order.
/// @param document has its data library.
void embedDefinitions(const MaterialX::DocumentPtr& document, const Definitions& definitions);

/// Takes definitions and graphs of kvor nodes out of a document.
void removeEmbedded(const MaterialX::DocumentPtr& document);

} // namespace vyr::MaterialTranslation::definitions
