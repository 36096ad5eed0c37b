#pragma once

#include <cstdint>
#include <string>

#include "assets/AssetView.h"
#include "assets/Log.h"
#include "materials/GenericMaterial.h"

namespace vyr::MaterialTranslation::materials
{

/// Adjusts what the generic properties said for the schemas whose nature they do not carry:
/// metallic paint, solid glass and water. Other schemas stay as they are.
/// @param own the asset's own properties.
/// @param colorMode decides the encoding of the colours that it sets (ColorPass.h).
/// @throws assets::PropertyError for a property of the wrong type.
void adjustForSchema(GenericMaterial& material, const std::string& schema,
                     const assets::AssetView& own, std::int32_t colorMode, const Log& log);

} // namespace vyr::MaterialTranslation::materials
