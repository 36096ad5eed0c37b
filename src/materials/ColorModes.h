#pragma once

#include <cstdint>

#include "assets/Asset.h"
#include "materials/StandardSurface.h"

/// @file
/// What ConverterOptions::colorMode takes plain colours for, and how documents state them.
namespace vyr::MaterialTranslation::materials
{

/// Colour space of a document's plain colours.
const char* plainColorSpace(std::int32_t colorMode);

/// Reads colours of one material.
struct ColorReader
{
    const assets::Asset& asset;
    std::int32_t colorMode;
    const Log& log;

    /// A colour in the encoding that the colour mode takes undeclared colours to have. A colour whose
    /// companion declares another one is re-encoded, so that all colours of a record agree.
    /// @return `fallback` when the asset lacks the property or its value.
    /// @throws assets::PropertyError also for a colour that its encoding makes too large.
    StandardSurfaceParams::Color read(const char* property,
                                      const StandardSurfaceParams::Color& fallback) const;

    /// A colour as the asset states it, with the colour space that it declares, or else the one that the
    /// colour mode takes it to have. The property has a value.
    Tint readTint(const char* property) const;
};

/// A linear colour in the encoding that the colour mode takes undeclared colours to have.
StandardSurfaceParams::Color encodeLinear(const StandardSurfaceParams::Color& color,
                                          std::int32_t colorMode);

/// Makes the plain colours linear, in the modes whose documents state linear colours: the base,
/// transmission and emission colour. Does nothing in the other modes.
/// @throws assets::PropertyError for a colour that would become too large for a float.
void applyColorPass(StandardSurfaceParams& params, std::int32_t colorMode);

} // namespace vyr::MaterialTranslation::materials
