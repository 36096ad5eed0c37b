#include <stdexcept>

#include <gtest/gtest.h>

#include "assets/InputColorSpace.h"
#include "assets/Units.h"
#include "support/AssetBuilder.h"

namespace vyr::MaterialTranslation::assets
{

namespace
{

using support::AssetBuilder;
using support::AssetPtr;

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
        {{"a", metal}, {"a", metal}, "surface_albedo", false, "color3", display},
        {{"a", metal}, {"a", metal}, "surface_normal", false, "vector3", linear},
        {{"a", metal}, {"a", metal}, "metal_f0", false, "color4", display},
        {{"a", metal}, {"a", metal}, "opaque_f0", false, "vector4", linear},
        {{"a", metal}, {"a", metal}, "opaque_f0", false, "vector2", ""},
        {{"a", metal}, {"a", metal}, "other", false, "color3", ""},
        {{"a", bitmap}, {"a", metal}, "surface_albedo", false, "float", display},
        {{"unworking", metal}, {"a", metal}, "surface_albedo", false, "color3", ""},
        // Images, before all that.
        {{"Lyrex-190", bitmap}, {"Lyrex-190", metal}, "surface_normal", true, "color3", srgb},
        {{"a", "bumpmapschema"}, {"a", metal}, "x", true, "float", srgb},
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
        // Qualified names, after whole ones.
        {{"Lyrex-190_x", metal}, {"a", metal}, "metal_f0", false, "color3", linear},
        {{"Lyrex-300_Metal_F0", metal}, {"a", metal}, "surface_normal", false, "color3", display},
        {{"Lyrex-150", bitmap}, {"Lyrex-190_x", metal}, "x", false, "float", display},
    };
    const auto build = [](const char* const(&texts)[2])
    {
        AssetBuilder builder;
        if (texts[0] == std::string("unworking"))
            builder.withoutWorkingNames();
        return builder.ownName(texts[0]).text("VersionGUID", texts[1]).build();
    };
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

TEST(InputColorSpace, IsDeclaredByTheCompanionOfAColour)
{
    const auto second = support::choiceValue({"not this", "colorspace_linear"}, {1, 0});
    AssetBuilder builder;
    for (const char* name : {"declared", "none selected", "alone", "unconnected", "lying"})
        builder.color(name, 1, 1, 1);
    builder.property("declared_colorspace", 10, second).scalar("number", 1);
    builder.property("none selected_colorspace", 10, support::choiceValue({"x"}, {}));
    builder.property("number_colorspace", 10, second).property("missing_colorspace", 10, second);
    builder.property("unconnected_colorspace", 9, nullptr).string("lying_colorspace", "x");
    const AssetPtr asset = builder.build();
    const AssetView view(*asset);
    EXPECT_EQ(GetPropertyColorSpace(view, "declared"), "colorspace_linear");
    for (const char* name : {"none selected", "alone", "number", "unconnected", "missing"})
        EXPECT_EQ(GetPropertyColorSpace(view, name), "colorspace_not_specified") << name;
    EXPECT_THROW(GetPropertyColorSpace(view, "lying"), std::invalid_argument);
}

} // namespace

} // namespace vyr::MaterialTranslation::assets
