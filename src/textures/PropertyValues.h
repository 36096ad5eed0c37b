#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include <MaterialTranslation/Schemas.h>

#include "assets/Asset.h"

namespace vyr::MaterialTranslation::textures
{

/// Reads a property as its row says: lengths in metres, angles in degrees, booleans as 0 or 1, choices as their place
/// in the row. What is out of range is taken as the nearest inside, an unknown choice as the first, with a warning.
///
/// A choice may begin as the property does in place of the row's choices: "tile_running" of "tile_Bond" is
/// "masonrycmu_running" of "masonrycmu_bond".
/// @param colorMode  Colours are read as linear ones by this mode; nothing: as they are written.
/// @return nothing when the asset has no value.
/// @throws assets::PropertyError for a value of another type.
std::optional<std::array<float, 3>> readPropertyValue(const assets::Asset& asset,
                                                      const PropertyRow& row, const char* name,
                                                      std::optional<std::int32_t> colorMode,
                                                      const Log& log);

} // namespace vyr::MaterialTranslation::textures
