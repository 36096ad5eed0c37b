#pragma once

#include <algorithm>
#include <array>
#include <iterator>
#include <span>
#include <string_view>

#include <MaterialTranslation/Schemas.h>

/// @file
/// The properties of textures that show an image, and of the place of all textures on a surface.
namespace vyr::MaterialTranslation::textures
{

constexpr PropertyRow placementRow(const char* name, const char* meaning, float fallback = 0.0f,
                                   const char* unit = "")
{
    return {.name = name,
            .kind = PropertyKind::Scalar,
            .meaning = meaning,
            .fallback = {fallback},
            .unit = unit};
}

constexpr PropertyRow imageFileRow(const char* name)
{
    return {
        .name = name, .kind = PropertyKind::Uri, .meaning = "its image file", .hasFallback = false};
}

constexpr PropertyRow repeatRow(const char* name, const char* meaning)
{
    return {.name = name, .kind = PropertyKind::Boolean, .meaning = meaning};
}

inline constexpr PropertyRow placementRows[] = {
    placementRow("texture_RealWorldOffsetX", "shift to the right on the surface", 0.0f, "length"),
    placementRow("texture_RealWorldOffsetY", "shift upwards on the surface", 0.0f, "length"),
    placementRow("texture_RealWorldScaleX", "width of the image on the surface", 1.0f, "length"),
    placementRow("texture_RealWorldScaleY",
                 "height of the image on the surface, in the unit of its width", 1.0f, "length"),
    placementRow("texture_UOffset", "moves the image to the right, as a share of a repeat"),
    placementRow("texture_VOffset", "moves the image up, as a share of a repeat"),
    placementRow("texture_UScale", "repeats of the image within its width", 1.0f),
    placementRow("texture_VScale", "repeats of the image within its height", 1.0f),
    repeatRow("texture_URepeat",
              "whether the image repeats along u; procedural textures do unless it is false"),
    repeatRow("texture_VRepeat",
              "whether the image repeats along v; procedural textures do unless it is false"),
    placementRow("texture_WAngle", "turn of the image, counter-clockwise", 0.0f, "degree"),
};

inline constexpr PropertyRow bitmapRows[] = {
    imageFileRow("unifiedbitmap_Bitmap"),
    {.name = "unifiedbitmap_RGBAmount",
     .kind = PropertyKind::Scalar,
     .meaning = "factor on the image",
     .fallback = {1.0f}},
    {.name = "unifiedbitmap_Invert",
     .kind = PropertyKind::Boolean,
     .meaning = "whether the image is taken as its negative, before the factor"},
};

inline constexpr PropertyRow bumpMapRows[] = {
    imageFileRow("bumpmap_Bitmap"),
    {.name = "bumpmap_Type",
     .kind = PropertyKind::Choice,
     .meaning = "what the image holds: heights, or normals",
     .choices = "bumpmap_height_map bumpmap_normal_map"},
    {.name = "bumpmap_Depth",
     .kind = PropertyKind::Scalar,
     .meaning = "height of white above black, of a height map",
     .unit = "length"},
    {.name = "bumpmap_NormalScale",
     .kind = PropertyKind::Scalar,
     .meaning = "strength of the relief, of a normal map",
     .fallback = {1.0f}},
};

/// The row of a name; a name without a row does not compile.
consteval const PropertyRow& imageRow(std::string_view name)
{
    for (const std::span<const PropertyRow> rows :
         {std::span<const PropertyRow>(placementRows), std::span<const PropertyRow>(bitmapRows),
          std::span<const PropertyRow>(bumpMapRows)})
        for (const PropertyRow& row : rows)
            if (row.name == name)
                return row;
    throw "a property without a row";
}

} // namespace vyr::MaterialTranslation::textures
