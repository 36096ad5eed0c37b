#pragma once

#include <string>
#include <string_view>

#include "assets/AssetView.h"

namespace vyr::MaterialTranslation::assets
{

inline constexpr const char* bitmapSchema = "UnifiedBitmapSchema";
inline constexpr const char* bumpMapSchema = "BumpMapSchema";
inline constexpr const char* noiseSchema = "NoiseSchema";
inline constexpr const char* gradientSchema = "GradientSchema";

inline constexpr const char* genericSchema = "GenericSchema";
inline constexpr const char* hardwoodSchema = "HardwoodSchema";
inline constexpr const char* metallicPaintSchema = "MetallicPaintSchema";
inline constexpr const char* solidGlassSchema = "SolidGlassSchema";
inline constexpr const char* waterSchema = "WaterSchema";

inline constexpr const char* lyrexMetalSchema = "LyrexMetalSchema";
inline constexpr const char* lyrexOpaqueSchema = "LyrexOpaqueSchema";
inline constexpr const char* lyrexTransparentSchema = "LyrexTransparentSchema";
inline constexpr const char* lyrexLayeredSchema = "LyrexLayeredSchema";
inline constexpr const char* lyrexGlazingSchema = "LyrexGlazingSchema";

/// The property of a bitmap texture that names its image.
inline constexpr const char* bitmapImageProperty = "unifiedbitmap_Bitmap";
/// The two properties that every asset has besides those of its schema: the schema's name as a
/// text, and whether the asset is hidden from users.
inline constexpr const char* versionProperty = "VersionGUID";
inline constexpr const char* hiddenProperty = "Hidden";

/// Whether the asset's schema is one of the five "Lyrex" schemas; case matters.
bool IsLyrex(const IAssetInstance& asset);

/// Whether the text starts with "Lyrex-", in any case.
bool HasLyrexPrefix(std::string_view name);

/// Whether the text names a preset of the "Lyrex" family as a whole: HasLyrexPrefix, and no "_".
bool IsLyrexName(std::string_view name);

/// The number behind the first "-" of a preset's name; 0 when no digits follow.
int LyrexNameNumber(const std::string& name);

} // namespace vyr::MaterialTranslation::assets
