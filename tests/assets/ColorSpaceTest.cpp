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
        const long long last = std::stoll(part.substr(part.find('-') + 1));
        for (long long number = std::stoll(part); number <= last; ++number)
            numbers.insert(number);
    }
    return numbers;
}

/// What presets and property names say of a colour: every number to well past the last class, so
/// every boundary from both sides, and every name of the map.
TEST(ColorMeanings, OfPresetNumbersAndPropertyNames)
{
    const struct
    {
        ColorMeaning meaning;
        std::set<long long> numbers;
        std::vector<std::string> names;
    } cases[] = {
        {ColorMeaning::Display,
         numbersOf("1-133, 137-141, 144-180, 202, 204-208, 213-237, 240-253, 255-256, 318-323, "
                   "334-338, 344, 350, 352-422, 624, 1170-1172, 2000-2023"),
         {"surface_albedo", "opaque_albedo", "opaque_luminance_modifier", "metal_f0",
          "transparent_color", "layered_bottom_f0", "layered_diffuse", "glazing_transmission_color",
          "glazing_f0", "Surface_Albedo"}},
        {ColorMeaning::Linear,
         numbersOf("134-136, 142-143, 181-201, 203, 209-212, 238-239, 254, 257-262, 625-626, "
                   "800-898, 1100-1169, 1173-1188, 2024-2064"),
         {"surface_cutout", "surface_roughness", "surface_anisotropy", "surface_rotation",
          "surface_normal", "opaque_f0", "opaque_mfp", "opaque_mfp_modifier", "opaque_luminance",
          "transparent_ior", "transparent_distance", "layered_f0", "layered_fraction",
          "layered_roughness", "layered_anisotropy", "layered_rotation", "layered_normal",
          "glazing_transmission_roughness", "LAYERED_F0"}},
        {ColorMeaning::Unknown,
         {2147483647LL, -2147483647LL, 4294967295LL, 4294967297LL},
         {"", "albedo", "surface_albed", "surface_albedoo", "generic_diffuse"}},
    };
    for (const auto& [meaning, numbers, names] : cases)
    {
        for (const std::string& name : names)
            EXPECT_EQ(propertyMeaning(name), meaning) << name;
        for (const long long number : numbers)
            EXPECT_EQ(presetMeaning(number), meaning) << number;
    }
    for (long long number = -3; number < 3000; ++number)
        EXPECT_EQ(presetMeaning(number) == ColorMeaning::Unknown,
                  cases[0].numbers.count(number) + cases[1].numbers.count(number) == 0)
            << number;
}

/// A source asset and a material, each by its own name and its schema text, and what is asked of them.
struct Question
{
    const char* source[2];
    const char* material[2];
    const char* property;
    bool isImage;
    const char* type;
    const char* expected;
};

TEST(InputColorSpace, IsDecidedInOrder)
{
    const char* metal = "LyrexMetalSchema";
    const char* bitmap = "UnifiedBitmapSchema";
    const char* display = "rec709_display";
    const char* linear = "lin_rec709";
    const char* srgb = "srgb_texture";
    const Question questions[] = {
        // By the property's name, for what has a colour space.
        {{"a", metal}, {"a", metal}, "surface_roughness", false, "float", ""},
        {{"a", metal}, {"a", metal}, "surface_albedo", false, "integer", ""},
        {{"a", metal}, {"a", metal}, "surface_albedo", false, "color3", display},
        {{"a", metal}, {"a", metal}, "surface_normal", false, "vector3", linear},
        {{"a", metal}, {"a", metal}, "metal_f0", false, "color4", display},
        {{"a", metal}, {"a", metal}, "opaque_f0", false, "vector4", linear},
        {{"a", metal}, {"a", metal}, "opaque_f0", false, "vector2", ""},
        {{"a", metal}, {"a", metal}, "other", false, "color3", ""},
        {{"a", bitmap}, {"a", metal}, "surface_albedo", false, "float", display},
        // Images, before all that.
        {{"Lyrex-190", bitmap}, {"Lyrex-190", metal}, "surface_normal", true, "color3", srgb},
        {{"a", bitmap}, {"a", metal}, "x", true, "float", srgb},
        {{"a", "bumpmapschema"}, {"a", metal}, "x", true, "vector3", srgb},
        {{"a", bitmap}, {"a", metal}, "x", true, "string", ""},
        {{"a", metal}, {"a", metal}, "x", true, "color3", srgb},
        // Preset numbers: the source's, for a texture the material's; names before schema texts.
        {{"Lyrex-190", metal}, {"a", metal}, "surface_albedo", false, "color3", linear},
        {{"a", "Lyrex-150"}, {"a", metal}, "surface_normal", false, "color3", display},
        {{"Lyrex-190", "Lyrex-150"}, {"a", metal}, "x", false, "color3", linear},
        {{"Lyrex-150", bitmap}, {"Lyrex-190", metal}, "x", false, "float", linear},
        {{"Lyrex-150", metal}, {"Lyrex-190", metal}, "x", false, "color3", display},
        {{"Lyrex-150", "bumpmapschema"}, {"a", "Lyrex-190"}, "x", false, "float", linear},
        {{"Lyrex-300", metal}, {"a", metal}, "metal_f0", false, "color3", display},
        {{"Lyrex-", metal}, {"a", metal}, "surface_normal", false, "vector3", linear},
        // Qualified names, after whole ones.
        {{"Lyrex-190_x", metal}, {"a", metal}, "metal_f0", false, "color3", linear},
        {{"Lyrex-300_Metal_F0", metal}, {"a", metal}, "surface_normal", false, "color3", display},
        {{"Lyrex-150", bitmap}, {"Lyrex-190_x", metal}, "x", false, "float", display},
    };
    const auto build = [](const char* const(&texts)[2])
    { return AssetBuilder().ownName(texts[0]).text("VersionGUID", texts[1]).build(); };
    for (const Question& q : questions)
    {
        const AssetPtr source = build(q.source);
        const AssetPtr material = build(q.material);
        const AssetView sourceView(*source);
        const AssetView materialView(*material);
        EXPECT_EQ(inputColorSpace({sourceView, materialView, q.property, q.isImage, q.type}),
                  q.expected)
            << q.source[0] << " " << q.source[1] << " " << q.property << " " << q.type;
    }
}

TEST(InputColorSpace, IsWhatTheAssetDeclaresBeforeAllElse)
{
    const auto ofDeclared = [](const char* declared, bool hasSchemaText)
    {
        AssetBuilder builder;
        builder.color("c", 1, 1, 1).choice("c_colorspace", declared);
        if (hasSchemaText)
            builder.text("VersionGUID", "x");
        const AssetPtr asset = builder.build();
        const AssetView view(*asset);
        return inputColorSpace({view, view, "c", true, "float"});
    };
    for (const auto& [declared, expected] :
         {std::pair("my colorspace_sRGB_gamma24 x", "rec709_display"),
          {"colorspace_linear", "lin_rec709"},
          {"colorspace_linear or colorspace_sRGB_gamma24", "rec709_display"}})
        EXPECT_EQ(ofDeclared(declared, false), expected);
    EXPECT_EQ(ofDeclared("colorspace_other", true), "srgb_texture");
    EXPECT_THROW(ofDeclared("colorspace_other", false), std::invalid_argument);
}

} // namespace

} // namespace vyr::MaterialTranslation::assets
