#include "assets/InputColorSpace.h"

#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/AssetBuilder.h"

namespace vyr::MaterialTranslation::assets
{

namespace
{

using support::AssetBuilder;
using support::AssetPtr;

/// The numbers of a text such as "1-3, 7".
std::set<long long> numbersOf(const std::string& text)
{
    std::set<long long> numbers;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, ',');)
    {
        const std::size_t dash = part.find('-');
        const long long first = std::stoll(part);
        const long long last =
            dash == std::string::npos ? first : std::stoll(part.substr(dash + 1));
        for (long long number = first; number <= last; ++number)
            numbers.insert(number);
    }
    return numbers;
}

/// Every number up to well past the last class, so every boundary from both sides.
TEST(PresetNumbers, FallIntoTheirClasses)
{
    const std::set<long long> display = numbersOf(
        "1-133, 137-141, 144-180, 202, 204-208, 213-237, 240-253, 255-256, 318-323, 334-338, 344, "
        "350, 352-422, 624, 1170-1172, 2000-2023");
    const std::set<long long> linear =
        numbersOf("134-136, 142-143, 181-201, 203, 209-212, 238-239, 254, 257-262, 625-626, "
                  "800-898, 1100-1169, 1173-1188, 2024-2064");
    for (long long number = -3; number < 3000; ++number)
    {
        const ColorMeaning expected = display.count(number) != 0  ? ColorMeaning::Display
                                      : linear.count(number) != 0 ? ColorMeaning::Linear
                                                                  : ColorMeaning::Unknown;
        EXPECT_EQ(presetMeaning(number), expected) << number;
    }
    for (const long long number : {2147483647LL, -2147483647LL, 4294967295LL, 4294967297LL})
        EXPECT_EQ(presetMeaning(number), ColorMeaning::Unknown) << number;
}

TEST(PropertyNames, TellColoursFromData)
{
    for (const char* name :
         {"surface_albedo", "opaque_albedo", "opaque_luminance_modifier", "metal_f0",
          "transparent_color", "layered_bottom_f0", "layered_diffuse", "glazing_transmission_color",
          "glazing_f0", "Surface_Albedo", "METAL_F0"})
        EXPECT_EQ(propertyMeaning(name), ColorMeaning::Display) << name;
    for (const char* name :
         {"surface_cutout", "surface_roughness", "surface_anisotropy", "surface_rotation",
          "surface_normal", "opaque_f0", "opaque_mfp", "opaque_mfp_modifier", "opaque_luminance",
          "transparent_ior", "transparent_distance", "layered_f0", "layered_fraction",
          "layered_roughness", "layered_anisotropy", "layered_rotation", "layered_normal",
          "glazing_transmission_roughness", "Layered_F0"})
        EXPECT_EQ(propertyMeaning(name), ColorMeaning::Linear) << name;
    for (const char* name : {"", "albedo", "surface_albed", "surface_albedoo", "generic_diffuse"})
        EXPECT_EQ(propertyMeaning(name), ColorMeaning::Unknown) << name;
}

/// A source asset, as a material of the "Lyrex" family or as a texture, and what is asked of it.
struct Question
{
    const char* label;
    const char* sourceVersion;
    const char* sourceName;
    const char* materialVersion;
    const char* materialName;
    const char* property;
    bool isImage;
    const char* type;
    const char* expected;
};

TEST(InputColorSpace, IsDecidedInOrder)
{
    const char* metal = "LyrexMetalSchema";
    const char* bitmap = "UnifiedBitmapSchema";
    const char* bump = "bumpmapschema";
    const char* display = "rec709_display";
    const char* linear = "lin_rec709";
    const char* srgb = "srgb_texture";
    const Question questions[] = {
        {"float of a material", metal, "a", metal, "a", "surface_roughness", false, "float", ""},
        {"integer", metal, "a", metal, "a", "surface_albedo", false, "integer", ""},
        {"colour by the map", metal, "a", metal, "a", "surface_albedo", false, "color3", display},
        {"data by the map", metal, "a", metal, "a", "surface_normal", false, "vector3", linear},
        {"color4", metal, "a", metal, "a", "metal_f0", false, "color4", display},
        {"vector4", metal, "a", metal, "a", "opaque_f0", false, "vector4", linear},
        {"vector2 does not count", metal, "a", metal, "a", "opaque_f0", false, "vector2", ""},
        {"no meaning", metal, "a", metal, "a", "other", false, "color3", ""},
        {"image colour", bitmap, "Lyrex-190", metal, "Lyrex-190", "surface_normal", true, "color3",
         srgb},
        {"image float", bitmap, "a", metal, "a", "x", true, "float", srgb},
        {"image vector", bump, "a", metal, "a", "x", true, "vector3", srgb},
        {"image of another type", bitmap, "a", metal, "a", "x", true, "string", ""},
        {"image of a material", metal, "a", metal, "a", "x", true, "color3", srgb},
        {"preset of the source", metal, "Lyrex-190", metal, "a", "surface_albedo", false, "color3",
         linear},
        {"preset by its schema text", "Lyrex-150", "a", metal, "a", "surface_normal", false,
         "color3", display},
        {"name before schema text", "Lyrex-150", "Lyrex-190", metal, "a", "x", false, "color3",
         linear},
        {"the material's name counts for textures", bitmap, "Lyrex-150", metal, "Lyrex-190", "x",
         false, "float", linear},
        {"and not for others", metal, "Lyrex-150", metal, "Lyrex-190", "x", false, "color3",
         display},
        {"the material's schema text counts for textures", bump, "Lyrex-150", "Lyrex-190", "a", "x",
         false, "float", linear},
        {"a preset of neither class", metal, "Lyrex-300", metal, "a", "metal_f0", false, "color3",
         display},
        {"number 0", metal, "Lyrex-", metal, "a", "surface_normal", false, "vector3", linear},
        {"a qualified name", metal, "Lyrex-190_x", metal, "a", "metal_f0", false, "color3", linear},
        {"a qualified name's own property", metal, "Lyrex-300_Metal_F0", metal, "a",
         "surface_normal", false, "color3", display},
        {"a whole name before a qualified one", bitmap, "Lyrex-150", metal, "Lyrex-190_x", "x",
         false, "float", display},
        {"a float of a texture", bitmap, "a", metal, "a", "surface_albedo", false, "float",
         display},
    };
    for (const Question& q : questions)
    {
        const AssetPtr source =
            AssetBuilder().ownName(q.sourceName).text("VersionGUID", q.sourceVersion).build();
        const AssetPtr material =
            AssetBuilder().ownName(q.materialName).text("VersionGUID", q.materialVersion).build();
        const AssetView sourceView(*source);
        const AssetView materialView(*material);
        EXPECT_EQ(inputColorSpace({sourceView, materialView, q.property, q.isImage, q.type}),
                  q.expected)
            << q.label;
    }
}

TEST(InputColorSpace, IsWhatTheAssetDeclaresBeforeAllElse)
{
    const struct
    {
        const char* declared;
        const char* expected;
    } cases[] = {
        {"colorspace_sRGB_gamma24", "rec709_display"},
        {"my colorspace_sRGB_gamma24 x", "rec709_display"},
        {"colorspace_linear", "lin_rec709"},
        {"colorspace_linear or colorspace_sRGB_gamma24", "rec709_display"},
        {"colorspace_other", "srgb_texture"},
    };
    for (const auto& [declared, expected] : cases)
    {
        // Without "VersionGUID": what is declared needs none, all else does.
        AssetBuilder builder;
        builder.color("c", 1, 1, 1).choice("c_colorspace", declared);
        const AssetPtr bare = builder.build();
        builder = AssetBuilder();
        builder.color("c", 1, 1, 1).choice("c_colorspace", declared).text("VersionGUID", "x");
        const AssetPtr whole = builder.build();
        const AssetView bareView(*bare);
        const AssetView wholeView(*whole);
        EXPECT_EQ(inputColorSpace({wholeView, wholeView, "c", true, "float"}), expected);
        if (std::string(expected) != "srgb_texture")
            EXPECT_EQ(inputColorSpace({bareView, bareView, "c", true, "float"}), expected);
        else
            EXPECT_THROW(inputColorSpace({bareView, bareView, "c", true, "float"}),
                         std::invalid_argument);
    }
}

} // namespace

} // namespace vyr::MaterialTranslation::assets
