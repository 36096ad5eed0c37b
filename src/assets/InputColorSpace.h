#pragma once

#include <string>

#include "assets/AssetView.h"

namespace vyr::MaterialTranslation::assets
{

/// What the colour space of an input that an asset's property feeds depends on.
struct ColorSpaceQuestion
{
    /// The asset whose property feeds the input: the material, or a connected texture.
    const AssetView& source;
    /// The material that the input belongs to.
    const AssetView& material;
    /// The property of `source`.
    const char* property;
    /// Whether the input is the image of a texture node.
    bool isImage = false;
    /// The input's value type, by MaterialX's name.
    std::string type;
};

/// The colour space of the input; empty when it gets none.
///
/// What the asset declares comes first. Then images count as sRGB, the number of a "Lyrex-" preset
/// decides by its class, and last the meaning of the property's name.
/// @throws PropertyError "Invalid property specified" when an asset lacks "VersionGUID".
std::string inputColorSpace(const ColorSpaceQuestion& question);

/// What a preset's number, or a property's name, says of colours.
enum class ColorMeaning
{
    Unknown,
    /// Display-referred colour.
    Display,
    /// Linear colour, or data.
    Linear,
};

/// The class of the number of a "Lyrex-" preset.
ColorMeaning presetMeaning(long long number);
/// The meaning of a branded property's name, in any case.
ColorMeaning propertyMeaning(const std::string& property);

} // namespace vyr::MaterialTranslation::assets
