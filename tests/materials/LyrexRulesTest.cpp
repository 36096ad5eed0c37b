#include <optional>

#include "materials/LyrexFamilies.h"

namespace vyr::materialtests
{

namespace
{

using LyrexRules = HostTest;

/// By the plain fraction and the image of it, and whatever the asset says itself.
TEST_F(LyrexRules, TheFractionDecidesItsDirection)
{
    const struct
    {
        bool plain;
        const char* image;
        std::optional<bool> own;
        const char* inverted;
        bool warns;
    } cases[] = {
        {false, nullptr, std::nullopt, "none", false},
        {false, nullptr, false, "false", false},
        {true, nullptr, std::nullopt, "true", false},
        {true, nullptr, false, "true", true},
        {false, "a.png", false, "false", false},
        {false, "a.png", true, "false", true},
        // An image that cannot be used leaves the plain fraction, or none at all.
        {true, "", false, "true", true},
        {false, "", false, "false", false},
    };
    for (const auto& one : cases)
    {
        SCOPED_TRACE(&one - cases);
        AssetBuilder builder = lyrexBuilder("LyrexLayeredSchema");
        if (one.own)
            builder.boolean("layered_fraction_invert", *one.own);
        if (one.plain)
            builder.scalar("layered_fraction", 0.25);
        if (one.image)
            builder.connect("layered_fraction", bitmapAsset(one.image));
        const Translation translation = translate(builder.build());
        const mx::InputPtr input =
            inputOf(translation.document, "M_shader", "layered_fraction_invert");
        EXPECT_EQ(input ? input->getValueString() : "none", one.inverted);
        EXPECT_EQ(translation.count(DiagnosticCode::ValueAdjusted), one.warns ? 1u : 0u);
        EXPECT_TRUE(isSound(translation.document));
    }
}

struct BadProperty
{
    const char* place;
    void (*add)(AssetBuilder&);
};

/// Connects a bump map that is bad in one thing.
template <class Add> void connectBump(AssetBuilder& builder, const char* type, const Add& add)
{
    AssetBuilder bump = bumpBuilder(type);
    add(bump);
    builder.connect("surface_normal", bump.build());
}

// Everything else that the family's node has is there and well.
const BadProperty badProperties[] = {
    {"surface_roughness", [](AssetBuilder& a) { a.text("surface_roughness", "0.5"); }},
    {"surface_anisotropy", [](AssetBuilder& a) { a.property("surface_anisotropy", 7, nullptr); }},
    {"opaque_luminance", [](AssetBuilder& a) { a.scalar("opaque_luminance", 1e39); }},
    {"opaque_albedo", [](AssetBuilder& a) { a.scalar("opaque_albedo", 1); }},
    {"opaque_emission", [](AssetBuilder& a) { a.scalar("opaque_emission", 1); }},
    {"surface_normal", [](AssetBuilder& a) { a.color("surface_normal", 0, 0, 1); }},
    {"surface_normal", [](AssetBuilder& a) { a.scalars("surface_normal", {0, 1}); }},
    {"VersionGUID", [](AssetBuilder&) {}},
    {"surface_normal/VersionGUID",
     [](AssetBuilder& a)
     {
         a.connect("surface_normal",
                   AssetBuilder("BumpMapSchema").uri("bumpmap_Bitmap", "a.png").build());
     }},
    {"surface_normal/bumpmap_Type",
     [](AssetBuilder& a)
     {
         connectBump(a, "", [](AssetBuilder& t) { t.text("bumpmap_Type", "bumpmap_normal_map"); });
     }},
    {"surface_normal/bumpmap_Depth", [](AssetBuilder& a)
     { connectBump(a, "height_map", [](AssetBuilder& t) { t.boolean("bumpmap_Depth", true); }); }},
    {"surface_normal/bumpmap_NormalScale",
     [](AssetBuilder& a)
     {
         connectBump(a, "normal_map", [](AssetBuilder& t) { t.text("bumpmap_NormalScale", "1"); });
     }},
};

/// What cannot be read ends the translation with its place, and the document stays as it was.
TEST_F(LyrexRules, WhatCannotBeReadFails)
{
    const Family& family = families().at(1);
    for (const auto& [place, add] : badProperties)
    {
        SCOPED_TRACE(place);
        AssetBuilder builder(family.schema);
        const std::string bad = place;
        if (bad != "VersionGUID")
            builder.text("VersionGUID", family.schema);
        add(builder);
        for (const Property& property : family.properties)
            if (property.name != bad.substr(0, bad.find('/')))
                setPlain(builder, property, 1);
        const Translation translation = translate(builder.build());
        EXPECT_FALSE(translation.succeeded);
        EXPECT_TRUE(*translation.document == *mx::createDocument());
        ASSERT_FALSE(translation.diagnostics.empty());
        EXPECT_EQ(translation.diagnostics.back().severity, Severity::Error);
        EXPECT_EQ(translation.diagnostics.back().property, bad);
    }
    EXPECT_TRUE(translate(AssetBuilder(family.schema).scalar("opaque_f0", 1).build()).succeeded)
        << "numbers do without the version, which decides about colour spaces";
}

/// The name decides before the property, and a declaration before the name.
TEST_F(LyrexRules, ColorSpacesFollowDeclarationPresetAndProperty)
{
    const struct
    {
        const char* ownName;
        const char* property;
        const char* declared;
        const char* colorSpace;
    } cases[] = {
        {"Lyrex-150", "surface_cutout", nullptr, "rec709_display"},
        {"Lyrex-190_x", "surface_albedo", nullptr, "lin_rec709"},
        {"Lyrex-300", "surface_cutout", nullptr, "lin_rec709"},
        {"Lyrex-300_unheard", "surface_albedo", nullptr, ""},
        {"Lyrex-190", "surface_albedo", "colorspace_sRGB_gamma24", "rec709_display"},
        {"Lyrex-150", "surface_albedo", "another_space", "rec709_display"},
    };
    for (const auto& [ownName, property, declared, colorSpace] : cases)
    {
        AssetBuilder builder = lyrexBuilder("LyrexMetalSchema");
        builder.ownName(ownName).color(property, 0.5, 0.5, 0.5);
        if (declared)
            builder.choice(std::string(property) + "_colorspace", declared);
        const Translation translation = translate(builder.build());
        EXPECT_EQ(inputOf(translation.document, "M_shader", property)->getColorSpace(), colorSpace)
            << ownName << " " << property;
        EXPECT_TRUE(translation.diagnostics.empty()) << translation.report();
    }
}

TEST_F(LyrexRules, PeopleSeeTheAssetsName)
{
    const char* const cases[][3] = {{"Brushed Steel, 2 mm", "Lyrex-012", "BrushedSteel2mm"},
                                    {"_-_", "own name", ""},
                                    {"", "own name 7", "ownname7"},
                                    {"caf\xC3\xA9 1", "own", "caf1"}};
    for (const auto& [display, own, label] : cases)
        EXPECT_EQ(translate(lyrexBuilder("LyrexGlazingSchema").name(display).ownName(own).build())
                      .document->getNode("M")
                      ->getAttribute("uiname"),
                  label);
}

/// Luminances are bare numbers; all else keeps what is known of its unit.
TEST_F(LyrexRules, PlainNumbersKeepTheirUnits)
{
    const struct
    {
        const char* schema;
        const char* property;
        std::uint32_t code;
        const char* unit;
    } cases[] = {
        {"LyrexOpaqueSchema", "opaque_luminance", 0x37002, ""},
        {"LyrexOpaqueSchema", "opaque_mfp", 0x2017, " unit=foot unittype=distance"},
        {"LyrexOpaqueSchema", "opaque_f0", 0x1001, ""},
        {"LyrexTransparentSchema", "transparent_distance", 0x2005, " unittype=distance"},
        {"LyrexLayeredSchema", "layered_rotation", 0x8002, " unit=degrees unittype=angle"},
    };
    for (const auto& [schema, property, code, unit] : cases)
    {
        const Translation translation =
            translate(lyrexBuilder(schema).scalar(property, 12.5, code).build());
        EXPECT_EQ(linesOf(translation.document->getNode("M_shader")),
                  Lines{std::string(property) + " float value=12.5" + unit});
        EXPECT_TRUE(isSound(translation.document));
    }
}

struct MapCase
{
    const char* type;
    const char* category;
    /// The input of the strength, with its default and the asset's own.
    const char* input;
    const char* missing;
    const char* given;
    DiagnosticCode warning = {};
};

const MapCase mapCases[] = {
    {"height_map", "kvor:height_map", "depth", "0", "1.5"},
    {"normal_map", "kvor:normal_map", "normal_scale", "1", "2.5"},
    {"", "kvor:height_map", "depth", "0", "1.5", DiagnosticCode::ValueAdjusted},
    {"parallax_map", "", "", "", "", DiagnosticCode::ChoiceUnknown},
    {"Normal_Map", "", "", "", "", DiagnosticCode::ChoiceUnknown},
};

/// Assets carry the strengths of both types of relief; only a name that nothing reads is told.
TEST_F(LyrexRules, ReliefHasItsPlaceAndStrength)
{
    const Lines bare{"file filename value=bump.png colorspace=srgb_texture",
                     "realworld_offset vector2 value=0, 0",
                     "realworld_scale vector2 value=1, 1",
                     "uv_offset vector2 value=0, 0",
                     "uv_scale vector2 value=1, 1",
                     "uaddressmode string value=clamp",
                     "vaddressmode string value=clamp",
                     "rotation_angle float value=0"};
    Lines placed = bare;
    placed[2] = "realworld_scale vector2 value=3, 4 unit=inch unittype=distance";
    placed[5] = "uaddressmode string value=periodic";
    for (const auto& [type, category, input, missing, given, warning] : mapCases)
        for (const bool full : {false, true})
        {
            SCOPED_TRACE(type);
            AssetBuilder bump = bumpBuilder(type);
            if (full)
                bump.scalar("bumpmap_Depth", 1.5, 0x2017)
                    .scalar("bumpmap_NormalScale", 2.5, 0x2017)
                    .scalar("texture_RealWorldScaleX", 3, 0x2016)
                    .scalar("texture_RealWorldScaleY", 4, 0x2016)
                    .boolean("texture_URepeat", true)
                    .scalar("bumpmap_Dept", 0.75);
            const Translation translation = translate(
                lyrexBuilder("LyrexMetalSchema").connect("surface_normal", bump.build()).build());
            EXPECT_TRUE(translation.succeeded && isSound(translation.document));
            EXPECT_EQ(translation.count(warning), warning == DiagnosticCode{} ? 0u : 1u);
            const mx::NodeGraphPtr graph = translation.document->getNodeGraph("M_inputGraph");
            ASSERT_EQ(graph != nullptr, *category != '\0');
            if (!graph)
                continue;
            Lines expected = full ? placed : bare;
            expected.push_back(std::string(input) + " float value=" + (full ? given : missing) +
                               (full ? " unit=foot unittype=distance" : ""));
            const mx::NodePtr node = graph->getNode("surface_normal");
            EXPECT_EQ(node->getCategory(), category);
            EXPECT_EQ(linesOf(node), expected);
            EXPECT_EQ(translation.count(DiagnosticCode::PropertyUnread), full ? 1u : 0u);
        }
}

} // namespace

} // namespace vyr::materialtests
