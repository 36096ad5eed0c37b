#pragma once

#include <MaterialTranslation/ConverterOptions.h>

#include "assets/AssetView.h"
#include "assets/Log.h"
#include "materials/GenericMaterial.h"

namespace vyr::MaterialTranslation::materials
{

/// Reads the "generic_..." properties of a table into shader values and textures, and warns about
/// what the table says that the document will not.
/// @param view with a PropertyUse, of the table that holds the generic properties.
/// @throws assets::PropertyError for a property of the wrong type.
GenericMaterial readGenericMaterial(const assets::AssetView& view, const ConverterOptions& options,
                                    const Log& log);

/// Surface roughness of a glossiness of 0 to 1; values outside count as the nearer end.
/// @param roughnessMode 2: 1 - glossiness. Any other: a curve through 21 points, flatter at the
///        smooth end.
float roughnessOf(float glossiness, std::int32_t roughnessMode);

} // namespace vyr::MaterialTranslation::materials
