#include "materials/LyrexAssets.h"

namespace vyr::materialtests
{

namespace
{

using LyrexRules = HostTest;

struct BadProperty
{
    std::string place;
    void (*add)(AssetBuilder&);
    /// The type of the bump map that is bad; none when the material is.
    const char* bump = nullptr;
};

const BadProperty badProperties[] = {
    {"surface_roughness", [](AssetBuilder& a) { a.text("surface_roughness", "0.5"); }},
    {"surface_anisotropy", [](AssetBuilder& a) { a.property("surface_anisotropy", 7, nullptr); }},
    {"opaque_luminance", [](AssetBuilder& a) { a.scalar("opaque_luminance", 1e39); }},
    {"opaque_albedo", [](AssetBuilder& a) { a.scalar("opaque_albedo", 1); }},
    {"opaque_emission", [](AssetBuilder& a) { a.scalar("opaque_emission", 1); }},
    {"surface_normal", [](AssetBuilder& a) { a.color("surface_normal", 0, 0, 1); }},
    {"surface_normal", [](AssetBuilder& a) { a.scalars("surface_normal", {0, 1}); }},
    {"VersionGUID", [](AssetBuilder&) {}},
    {"surface_normal/VersionGUID", [](AssetBuilder& a)
     { a = std::move(AssetBuilder("BumpMapSchema").uri("bumpmap_Bitmap", "a.png")); }, ""},
    {"surface_normal/bumpmap_Type",
     [](AssetBuilder& a) { a.text("bumpmap_Type", "bumpmap_normal_map"); }, ""},
    {"surface_normal/bumpmap_Depth", [](AssetBuilder& a) { a.boolean("bumpmap_Depth", true); },
     "height_map"},
    {"surface_normal/bumpmap_NormalScale",
     [](AssetBuilder& a) { a.text("bumpmap_NormalScale", "1"); }, "normal_map"},
};

/// What cannot be read ends the translation with its place, and the document stays as it was.
TEST_F(LyrexRules, WhatCannotBeReadFails)
{
    for (const auto& [place, add, bump] : badProperties)
    {
        SCOPED_TRACE(place);
        AssetBuilder builder("LyrexOpaqueSchema");
        AssetBuilder texture = bumpBuilder(bump ? bump : "");
        add(bump ? texture : builder);
        if (bump)
            builder.connect("surface_normal", texture.build());
        if (place != "VersionGUID")
            builder.text("VersionGUID", "LyrexOpaqueSchema");
        builder.color("surface_albedo", 1, 1, 1).connect("opaque_f0", bitmapAsset("a.png"));
        const Translation translation = translate(builder.build());
        EXPECT_FALSE(translation.succeeded);
        EXPECT_TRUE(*translation.document == *mx::createDocument());
        ASSERT_FALSE(translation.diagnostics.empty());
        EXPECT_EQ(translation.diagnostics.back().severity, Severity::Error);
        EXPECT_EQ(translation.diagnostics.back().property, place);
    }
    EXPECT_TRUE(
        translate(AssetBuilder("LyrexOpaqueSchema").scalar("opaque_f0", 1).build()).succeeded)
        << "numbers do without the version, which decides about colour spaces";
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
        bool fits = true;
    } cases[] = {
        {"LyrexOpaqueSchema", "opaque_luminance", 0x37002, ""},
        {"LyrexOpaqueSchema", "opaque_mfp", 0x2017, " unit=foot unittype=distance"},
        {"LyrexOpaqueSchema", "opaque_f0", 0x1001, ""},
        {"LyrexTransparentSchema", "transparent_distance", 0x2005, " unittype=distance"},
        {"LyrexLayeredSchema", "layered_rotation", 0x8002, " unit=degrees unittype=angle"},
        {"LyrexMetalSchema", "surface_rotation", 0x2017, " unit=foot unittype=distance", false},
    };
    for (const auto& [schema, property, code, unit, fits] : cases)
    {
        const Translation made =
            translate(lyrexBuilder(schema).scalar(property, 12.5, code).build());
        EXPECT_EQ(linesOf(made.document->getNode("M_shader")).back(),
                  std::string(property) + " float value=12.5" + unit);
        EXPECT_EQ(made.count(DiagnosticCode::UnitMisfit), fits ? 0u : 1u) << made.report();
    }
}

struct MapCase
{
    const char* type;
    const char* category;
    /// The input of the strength, with its default and the asset's own.
    std::string input;
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
    for (const auto& [type, category, input, missing, given, warning] : mapCases)
        for (const bool full : {false, true})
        {
            SCOPED_TRACE(type);
            AssetBuilder bump = bumpBuilder(type);
            if (full)
                bump.scalar("bumpmap_Depth", 1.5, 0x2017)
                    .scalar("bumpmap_NormalScale", 2.5, 0x2017)
                    .scalar("texture_RealWorldScaleX", 3, 0x2016)
                    .scalar("bumpmap_Dept", 0.75);
            const Translation translation = translate(
                lyrexBuilder("LyrexMetalSchema").connect("surface_normal", bump.build()).build());
            EXPECT_TRUE(translation.succeeded && isSound(translation.document));
            EXPECT_EQ(translation.count(warning), warning == DiagnosticCode{} ? 0u : 1u);
            const mx::NodeGraphPtr graph = translation.document->getNodeGraph("M_inputGraph");
            ASSERT_EQ(graph != nullptr, *category != '\0');
            if (!graph)
                continue;
            const Lines lines = linesOf(graph->getNode("surface_normal"));
            ASSERT_EQ(lines.size(), 10u);
            EXPECT_EQ((Lines{lines[0], lines[1], lines[3], lines[9]}),
                      (Lines{category + std::string(" vector3"),
                             "file filename value=bump.png colorspace=srgb_texture",
                             full ? "realworld_scale vector2 value=3, 1 unit=inch unittype=distance"
                                  : "realworld_scale vector2 value=1, 1",
                             input + " float value=" +
                                 (full ? given + std::string(" unit=foot unittype=distance")
                                       : missing)}));
            EXPECT_EQ(translation.count(DiagnosticCode::PropertyUnread), full ? 1u : 0u);
        }
}

} // namespace

} // namespace vyr::materialtests
