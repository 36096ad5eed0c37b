#pragma once

#include <string>

#include "assets/Asset.h"

namespace vyr::MaterialTranslation::assets
{

/// The colour spaces that documents use, by MaterialX's names.
inline constexpr const char* linearRec709 = "lin_rec709";
inline constexpr const char* gamma22Rec709 = "g22_rec709";
inline constexpr const char* displayRec709 = "rec709_display";
inline constexpr const char* srgbTexture = "srgb_texture";

/// The textures of "Lyrex" materials, whose own images count rather than the name of the material.
inline constexpr const char* lyrexTextureSchemas[] = {bitmapSchema, bumpMapSchema};

/// The colour space that the asset declares for a colour property by the choice in its companion
/// "<identifier>_colorspace": `displayRec709` for "colorspace_sRGB_gamma24", `linearRec709` for
/// "colorspace_linear", else empty. A companion that cannot be read declares nothing, with a warning.
std::string declaredColorSpace(const Asset& asset, const Property& property, const Log& log);

/// What the colour space of an input that an asset's property feeds depends on.
struct ColorSpaceQuestion
{
    /// The asset whose property feeds the input: the material, or a connected texture.
    const Asset& source;
    /// The material that the input belongs to.
    const Asset& material;
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
std::string inputColorSpace(const ColorSpaceQuestion& question, const Log& log);

/// What follows the first "_"; the whole text when there is none.
std::string suffixAfterFirstUnderscore(const std::string& text);

} // namespace vyr::MaterialTranslation::assets
