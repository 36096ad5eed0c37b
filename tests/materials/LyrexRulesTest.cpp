#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "materials/LyrexFamilies.h"

namespace vyr::materialtests
{

namespace
{

using Lines = std::vector<std::string>;

class LyrexRules : public HostTest
{
  protected:
    static std::string valueOf(const Translation& translation, const char* input)
    {
        const mx::InputPtr found = inputOf(translation.document, "M_shader", input);
        return found ? found->getValueString() : "none";
    }
};

struct FractionCase
{
    /// The plain fraction and the image of it, and the asset's own direction.
    bool plain;
    const char* image;
    std::optional<bool> own;
    const char* inverted;
    bool warns;
};

const FractionCase fractionCases[] = {
    {false, nullptr, std::nullopt, "none", false},
    {false, nullptr, false, "false", false},
    {false, nullptr, true, "true", false},
    {true, nullptr, std::nullopt, "true", false},
    {true, nullptr, true, "true", false},
    {true, nullptr, false, "true", true},
    {true, "a.png", std::nullopt, "false", false},
    {false, "a.png", false, "false", false},
    {false, "a.png", true, "false", true},
    // An image that cannot be used leaves the plain fraction, or none at all.
    {true, "", true, "true", false},
    {true, "", false, "true", true},
    {false, "", false, "false", false},
    {false, "", true, "true", false},
};

TEST_F(LyrexRules, TheFractionDecidesItsDirection)
{
    for (const FractionCase& one : fractionCases)
    {
        SCOPED_TRACE(std::to_string(&one - fractionCases));
        AssetBuilder builder = lyrexBuilder("LyrexLayeredSchema");
        if (one.own)
            builder.boolean("layered_fraction_invert", *one.own);
        if (one.plain)
            builder.scalar("layered_fraction", 0.25);
        if (one.image)
            builder.connect("layered_fraction", bitmapAsset(one.image));
        const Translation translation = translate(builder.build());
        ASSERT_TRUE(translation.succeeded) << translation.report();
        EXPECT_EQ(valueOf(translation, "layered_fraction_invert"), one.inverted);
        EXPECT_EQ(translation.count(DiagnosticCode::ValueAdjusted), one.warns ? 1u : 0u);
        EXPECT_TRUE(isSound(translation.document));
    }
}

struct BadProperty
{
    const char* what;
    const char* property;
    void (*add)(AssetBuilder&);
};

constexpr auto nan = std::numeric_limits<double>::quiet_NaN();

// Everything else that the family's node has is there and well.
const BadProperty badProperties[] = {
    {"a number as text", "surface_roughness",
     [](AssetBuilder& a) { a.text("surface_roughness", "0.5"); }},
    {"a number as integer", "opaque_f0", [](AssetBuilder& a) { a.integer("opaque_f0", 1); }},
    {"a number without components", "opaque_mfp",
     [](AssetBuilder& a) { a.scalars("opaque_mfp", {}); }},
    {"a number that is none", "surface_rotation",
     [](AssetBuilder& a) { a.scalar("surface_rotation", nan); }},
    {"a number beyond floats", "opaque_luminance",
     [](AssetBuilder& a) { a.scalar("opaque_luminance", 1e39); }},
    {"a number without value", "surface_anisotropy",
     [](AssetBuilder& a) { a.property("surface_anisotropy", 7, nullptr); }},
    {"a colour as number", "opaque_albedo", [](AssetBuilder& a) { a.scalar("opaque_albedo", 1); }},
    {"a colour without components", "surface_albedo",
     [](AssetBuilder& a) { a.property("surface_albedo", 8, colorValue({})); }},
    {"a Boolean as number", "opaque_emission",
     [](AssetBuilder& a) { a.scalar("opaque_emission", 1); }},
    {"a vector as colour", "surface_normal",
     [](AssetBuilder& a) { a.color("surface_normal", 0, 0, 1); }},
    {"a vector of two", "surface_normal",
     [](AssetBuilder& a) { a.scalars("surface_normal", {0, 1}); }},
    {"a vector of one", "surface_normal", [](AssetBuilder& a) { a.scalar("surface_normal", 1); }},
};

/// A property that cannot be read ends the translation, wherever it stands, and the document
/// stays as it was.
TEST_F(LyrexRules, WhatCannotBeReadFails)
{
    const Family& family = families().at(1);
    for (const BadProperty& one : badProperties)
    {
        SCOPED_TRACE(one.what);
        AssetBuilder builder = lyrexBuilder(family.schema);
        one.add(builder);
        int position = 0;
        for (const Property& property : family.properties)
            if (++position; std::string(property.name) != one.property)
                setPlain(builder, property, position);
        const Translation translation = translate(builder.build());
        EXPECT_FALSE(translation.succeeded);
        EXPECT_TRUE(*translation.document == *mx::createDocument());
        ASSERT_EQ(translation.diagnostics.size(), 1u) << translation.report();
        EXPECT_EQ(translation.diagnostics.front().severity, Severity::Error);
        EXPECT_EQ(translation.diagnostics.front().property, one.property);
    }
}

/// The version decides about colour spaces; numbers do without it.
TEST_F(LyrexRules, ColorsNeedTheVersion)
{
    const auto translateOne = [this](void (*add)(AssetBuilder&))
    {
        AssetBuilder builder("LyrexMetalSchema");
        add(builder);
        return translate(builder.build());
    };
    EXPECT_TRUE(translateOne([](AssetBuilder& a) { a.scalar("surface_roughness", 1); }).succeeded);
    for (const auto& add : {+[](AssetBuilder& a) { a.color("metal_f0", 1, 1, 1); },
                            +[](AssetBuilder& a) { a.scalars("surface_normal", {0, 0, 1}); }})
    {
        const Translation translation = translateOne(add);
        EXPECT_FALSE(translation.succeeded);
        EXPECT_EQ(translation.first(DiagnosticCode::PropertyType).property, "VersionGUID");
        EXPECT_TRUE(translation.document->getChildren().empty());
    }
}

struct ColorSpaceCase
{
    const char* ownName;
    const char* property;
    /// What the property's companion declares.
    const char* declared;
    const char* colorSpace;
};

const ColorSpaceCase colorSpaceCases[] = {
    {"Lyrex-150", "surface_cutout", nullptr, "rec709_display"},
    {"lyrex-150", "surface_cutout", nullptr, "rec709_display"},
    {"Lyrex-190", "surface_albedo", nullptr, "lin_rec709"},
    {"Lyrex-300", "surface_albedo", nullptr, "rec709_display"},
    {"Lyrex-300", "surface_cutout", nullptr, "lin_rec709"},
    {"Lyrex-190_x", "surface_albedo", nullptr, "lin_rec709"},
    // The name tells the property too.
    {"Lyrex-300_surface_cutout", "surface_albedo", nullptr, "lin_rec709"},
    {"Lyrex-300_Metal_F0", "surface_cutout", nullptr, "rec709_display"},
    {"Lyrex-300_unheard", "surface_albedo", nullptr, ""},
    {"Plain-150", "surface_cutout", nullptr, "lin_rec709"},
    {"Lyrex-190", "surface_albedo", "colorspace_sRGB_gamma24", "rec709_display"},
    {"Lyrex-150", "surface_albedo", "my_colorspace_linear_2", "lin_rec709"},
    {"Lyrex-150", "surface_albedo", "another_space", "rec709_display"},
};

TEST_F(LyrexRules, ColorSpacesFollowDeclarationPresetAndProperty)
{
    for (const ColorSpaceCase& one : colorSpaceCases)
    {
        AssetBuilder builder = lyrexBuilder("LyrexMetalSchema");
        builder.ownName(one.ownName).color(one.property, 0.5, 0.5, 0.5);
        if (one.declared)
            builder.choice(std::string(one.property) + "_colorspace", one.declared);
        const Translation translation = translate(builder.build());
        const mx::InputPtr input = inputOf(translation.document, "M_shader", one.property);
        ASSERT_NE(input, nullptr) << translation.report();
        EXPECT_EQ(input->getColorSpace(), one.colorSpace) << one.ownName << " " << one.property;
        EXPECT_TRUE(translation.diagnostics.empty()) << translation.report();
        EXPECT_TRUE(isSound(translation.document));
    }
    EXPECT_EQ(
        valueOf(
            translate(lyrexBuilder("LyrexMetalSchema").color("metal_f0", 0.5, 0.25, 0.125).build()),
            "metal_f0"),
        "0.5, 0.25, 0.125")
        << "the colour modes are not for this family";
}

struct NameCase
{
    const char* display;
    const char* own;
    const char* label;
};

const NameCase nameCases[] = {
    {"Brushed Steel, 2 mm", "Lyrex-012", "BrushedSteel2mm"},
    {"_-_", "own name", ""},
    {"", "own name 7", "ownname7"},
    {"\xE6\x9C\xA8", "own", ""},
    {"caf\xC3\xA9 1", "own", "caf1"},
    {"", "", ""},
};

TEST_F(LyrexRules, PeopleSeeTheAssetsName)
{
    for (const NameCase& one : nameCases)
    {
        const Translation translation = translate(
            lyrexBuilder("LyrexGlazingSchema").name(one.display).ownName(one.own).build());
        const mx::NodePtr material = translation.document->getNode("M");
        EXPECT_EQ(material->getAttribute("uiname"), one.label) << one.display;
        EXPECT_TRUE(isSound(translation.document));
    }
}

/// Without properties there is a shader all the same, and with a look the material is assigned.
TEST_F(LyrexRules, TheLookFollowsTheMaterial)
{
    for (const Family& family : families())
    {
        ConverterOptions options = plainOptions();
        options.addLook = true;
        const AssetPtr asset =
            lyrexBuilder(family.schema).connect("surface_albedo", bitmapAsset("wood.png")).build();
        const Translation translation = translate(asset, options);
        const mx::DocumentPtr& document = translation.document;
        EXPECT_EQ(topLevel(document),
                  (Lines{std::string(family.category) + " M_shader", "surfacematerial M",
                         "look default", "nodegraph M_inputGraph"}));
        const mx::LookPtr look = document->getLook("default");
        ASSERT_NE(look, nullptr);
        const auto assignment = look->getMaterialAssign("material_assign_default");
        ASSERT_NE(assignment, nullptr);
        EXPECT_EQ(assignment->getMaterial() + assignment->getGeom(), "M*");
        EXPECT_EQ(inputOf(document, "M", "surfaceshader")->getNodeName(), "M_shader");
        EXPECT_EQ(document->getColorSpace(), "lin_rec709");
        EXPECT_TRUE(isSound(document));
    }
}

/// What an asset library claims and does not deliver is not there.
TEST_F(LyrexRules, ConnectionsThatAreNotThereCountAsNone)
{
    for (const Connections claim : {Connections::ClaimedButNone, Connections::ClaimedButNull})
        for (const Family& family : families())
        {
            AssetBuilder builder = lyrexBuilder(family.schema);
            for (int i = 0; const Property& property : family.properties)
            {
                setPlain(builder, property, i++);
                builder.claiming(claim);
            }
            constexpr std::uint32_t reference = 9;
            builder.property("unheard", reference, nullptr);
            const Translation translation = translate(builder.build());
            ASSERT_TRUE(translation.succeeded) << translation.report();
            EXPECT_EQ(translation.document->getNode("M_shader")->getInputs().size(),
                      family.properties.size());
            EXPECT_TRUE(translation.document->getNodeGraphs().empty());
            EXPECT_TRUE(isSound(translation.document));
        }
}

TEST_F(LyrexRules, PropertiesOfOtherFamiliesAreToldAbout)
{
    const Translation translation = translate(lyrexBuilder("LyrexMetalSchema")
                                                  .scalar("surface_roughness", 0.5)
                                                  .scalar("surface_roughnes", 0.5)
                                                  .scalar("opaque_f0", 0.5)
                                                  .build());
    ASSERT_TRUE(translation.succeeded);
    EXPECT_EQ(translation.count(DiagnosticCode::PropertyUnread), 2u) << translation.report();
    EXPECT_EQ(translation.document->getNode("M_shader")->getInputs().size(), 1u);
}

} // namespace

} // namespace vyr::materialtests
