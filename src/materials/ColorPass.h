#pragma once

#include <cstdint>

#include "assets/PropertyReaders.h"
#include "materials/GenericMaterial.h"

namespace vyr::MaterialTranslation::materials
{

/// Colour space of a document's plain colours, by ConverterOptions::colorMode.
const char* plainColorSpace(std::int32_t colorMode);

/// A colour of an asset in the encoding that the colour mode takes undeclared colours to have. A
/// colour whose companion declares another one is re-encoded, so that all colours of a record agree.
/// @return `fallback` when the asset lacks the property or its value.
/// @throws assets::PropertyError also for a colour that its encoding makes too large.
StandardSurfaceParams::Color readColor(const assets::AssetView& view, const char* property,
                                       const StandardSurfaceParams::Color& fallback,
                                       std::int32_t colorMode);

/// A linear colour in the encoding that the colour mode takes undeclared colours to have.
StandardSurfaceParams::Color encodeLinear(const StandardSurfaceParams::Color& color,
                                          std::int32_t colorMode);

/// Makes the plain colours linear, in the modes whose documents state linear colours: the base,
/// transmission and emission colour, and the tint. Does nothing in the other modes.
/// @throws assets::PropertyError for a colour that would become too large for a float.
void applyColorPass(GenericMaterial& material, std::int32_t colorMode);

} // namespace vyr::MaterialTranslation::materials
