#pragma once

namespace vyr::MaterialTranslation::assets
{

inline constexpr const char* bitmapSchema = "UnifiedBitmapSchema";
inline constexpr const char* bumpMapSchema = "BumpMapSchema";
inline constexpr const char* noiseSchema = "NoiseSchema";

inline constexpr const char* genericSchema = "GenericSchema";
inline constexpr const char* hardwoodSchema = "HardwoodSchema";
inline constexpr const char* metallicPaintSchema = "MetallicPaintSchema";
inline constexpr const char* solidGlassSchema = "SolidGlassSchema";
inline constexpr const char* waterSchema = "WaterSchema";

/// The property of a bitmap texture that names its image.
inline constexpr const char* bitmapImageProperty = "unifiedbitmap_Bitmap";
/// The two properties that every asset has besides those of its schema: the schema's name as a
/// text, and whether the asset is hidden from users.
inline constexpr const char* versionProperty = "VersionGUID";
inline constexpr const char* hiddenProperty = "Hidden";

/// What follows a colour property's identifier in the name of the companion that declares its colour
/// space.
inline constexpr const char* colorSpaceSuffix = "_colorspace";

} // namespace vyr::MaterialTranslation::assets
