#pragma once

#include <MaterialTranslation/Definitions.h>

namespace vyr::MaterialTranslation::definitions
{

/// The folders with every empty one replaced by the one where it is expected.
/// @throws std::runtime_error when it is not there.
DefinitionFolders completed(const DefinitionFolders& chosen);

} // namespace vyr::MaterialTranslation::definitions
