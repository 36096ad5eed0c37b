#pragma once

#include <cstdint>
#include <string>

#include "materials/ColorModes.h"
#include "materials/StandardSurface.h"

namespace vyr::MaterialTranslation::materials
{

/// Translates a material of "GenericSchema", or of another schema by the generic property table
/// that it carries, into a `standard_surface`.
/// @return false, with the reason in the log and nothing built, when a property cannot be read,
///         when there is no generic property table, when an image cannot be written, or when a name
///         is taken in the document.
/// @throws what the asset library and MaterialX throw, `std::invalid_argument` apart.
bool translateGeneric(const Translation& translation);

/// Reads the "generic_..." properties of a table into shader values and textures, and warns about
/// what the table says that the document will not.
/// @param asset with the table that holds the generic properties.
/// @throws assets::PropertyError for a property of the wrong type.
StandardSurface readGenericProperties(const assets::Asset& asset, const Translation& translation);

/// Adjusts what the generic properties said for the schemas whose nature they do not carry:
/// metallic paint, solid glass and water. Other schemas stay as they are.
/// @param own of the asset's own properties.
/// @throws assets::PropertyError for a property of the wrong type.
void adjustForSchema(StandardSurfaceParams& params, const std::string& schema,
                     const ColorReader& own);

/// Surface roughness of a glossiness of 0 to 1; values outside count as the nearer end.
/// @param roughnessMode 2: 1 - glossiness. Any other: a curve through 21 points, flatter at the
///        smooth end.
float roughnessOf(float glossiness, std::int32_t roughnessMode);

} // namespace vyr::MaterialTranslation::materials
