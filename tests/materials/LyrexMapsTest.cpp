#include <string>
#include <vector>

#include "materials/LyrexFamilies.h"

namespace vyr::materialtests
{

namespace
{

using Lines = std::vector<std::string>;

constexpr std::uint32_t millimeter = 0x200E;
constexpr std::uint32_t inch = 0x2016;
constexpr std::uint32_t foot = 0x2017;
constexpr std::uint32_t degrees = 0x8002;
constexpr std::uint32_t footlambert = 0x37002;
constexpr std::uint32_t unknownDistance = 0x2005;

/// Relief on the normal of a metal.
class LyrexMaps : public HostTest
{
  protected:
    Translation translateRelief(const AssetPtr& texture) const
    {
        return translate(
            lyrexBuilder("LyrexMetalSchema").connect("surface_normal", texture).build());
    }

    /// Each input of the texture's node as "name type value", and what else it states.
    static Lines nodeLines(const mx::DocumentPtr& document)
    {
        Lines lines;
        const mx::NodeGraphPtr graph = document->getNodeGraph("M_inputGraph");
        const mx::NodePtr node = graph ? graph->getNode("surface_normal") : nullptr;
        if (!node)
            return lines;
        lines.push_back(node->getCategory());
        for (const mx::InputPtr& input : node->getInputs())
        {
            std::string line =
                input->getName() + " " + input->getType() + " " + input->getValueString();
            for (const char* attribute : {"colorspace", "unit", "unittype"})
                if (input->hasAttribute(attribute))
                    line += " " + input->getAttribute(attribute);
            lines.push_back(line);
        }
        return lines;
    }
};

/// All that a texture can say about its place, each value once.
void place(AssetBuilder& builder)
{
    builder.scalar("texture_RealWorldOffsetX", 1, millimeter)
        .scalar("texture_RealWorldOffsetY", 2, millimeter)
        .scalar("texture_RealWorldScaleX", 3, inch)
        .scalar("texture_RealWorldScaleY", 4, inch)
        .scalar("texture_UOffset", 5)
        .scalar("texture_VOffset", 6)
        .scalar("texture_UScale", 7)
        .scalar("texture_VScale", 8)
        .boolean("texture_URepeat", true)
        .boolean("texture_VRepeat", false)
        .scalar("texture_WAngle", 9, degrees);
}

const Lines placement{"realworld_offset vector2 1, 2 millimeter distance",
                      "realworld_scale vector2 3, 4 inch distance",
                      "uv_offset vector2 5, 6",
                      "uv_scale vector2 7, 8",
                      "uaddressmode string periodic",
                      "vaddressmode string clamp",
                      "rotation_angle float 9 degrees angle"};

const Lines noPlacement{"realworld_offset vector2 0, 0", "realworld_scale vector2 1, 1",
                        "uv_offset vector2 0, 0",        "uv_scale vector2 1, 1",
                        "uaddressmode string clamp",     "vaddressmode string clamp",
                        "rotation_angle float 0"};

struct MapCase
{
    const char* type;
    const char* category;
    /// The property of the strength, and the input that it becomes.
    const char* property;
    const char* input;
    const char* missing;
};

const MapCase mapCases[] = {
    {"bumpmap_height_map", "kvor:height_map", "bumpmap_Depth", "depth", "0"},
    {"bumpmap_normal_map", "kvor:normal_map", "bumpmap_NormalScale", "normal_scale", "1"},
};

struct UnitCase
{
    std::uint32_t code;
    const char* attributes;
};

const UnitCase unitCases[] = {
    {0, ""}, {0x1001, ""}, {0x1002, ""}, {foot, " foot distance"}, {unknownDistance, " distance"},
};

TEST_F(LyrexMaps, HaveTheirPlaceAndStrength)
{
    for (const MapCase& one : mapCases)
        for (const UnitCase& unit : unitCases)
        {
            AssetBuilder builder = bumpBuilder(one.type);
            place(builder);
            builder.scalar(one.property, 2.5, unit.code);
            const Translation translation = translateRelief(builder.build());
            ASSERT_TRUE(translation.succeeded) << translation.report();

            Lines expected{one.category, "file filename bump.png srgb_texture"};
            expected.insert(expected.end(), placement.begin(), placement.end());
            expected.push_back(std::string(one.input) + " float 2.5" + unit.attributes);
            EXPECT_EQ(nodeLines(translation.document), expected);
            EXPECT_EQ(translation.count(DiagnosticCode::UnitUnknown),
                      unit.code == unknownDistance ? 1u : 0u);
            EXPECT_TRUE(isSound(translation.document));
        }
}

TEST_F(LyrexMaps, MissingNumbersHaveDefaults)
{
    for (const MapCase& one : mapCases)
    {
        const Translation translation = translateRelief(bumpBuilder(one.type).build());
        Lines expected{one.category, "file filename bump.png srgb_texture"};
        expected.insert(expected.end(), noPlacement.begin(), noPlacement.end());
        expected.push_back(std::string(one.input) + " float " + one.missing);
        EXPECT_EQ(nodeLines(translation.document), expected);
        EXPECT_TRUE(isSound(translation.document));
    }
}

/// Assets carry the strengths of both types; only a name that nothing reads is told about.
TEST_F(LyrexMaps, TheOthersStrengthIsNoLoss)
{
    for (const MapCase& one : mapCases)
    {
        AssetBuilder builder = bumpBuilder(one.type);
        builder.scalar("bumpmap_Depth", 0.5)
            .scalar("bumpmap_NormalScale", 0.25)
            .scalar("bumpmap_Dept", 0.75);
        const Translation translation = translateRelief(builder.build());
        EXPECT_EQ(translation.count(DiagnosticCode::PropertyUnread), 1u) << translation.report();
        EXPECT_EQ(translation.first(DiagnosticCode::PropertyUnread).property,
                  "surface_normal/bumpmap_Dept");
        const std::string other = &one == mapCases ? "normal_scale" : "depth";
        EXPECT_EQ(translation.document->getNodeGraph("M_inputGraph")
                      ->getNode("surface_normal")
                      ->getInput(other),
                  nullptr);
    }
}

struct TypeCase
{
    const char* type;
    const char* category;
    DiagnosticCode warning;
};

const TypeCase typeCases[] = {
    {"", "kvor:height_map", DiagnosticCode::ValueAdjusted},
    {"bumpmap_parallax_map", "", DiagnosticCode::ChoiceUnknown},
    {"Bumpmap_Normal_Map", "", DiagnosticCode::ChoiceUnknown},
};

TEST_F(LyrexMaps, OfNoKnownType)
{
    for (const TypeCase& one : typeCases)
    {
        const Translation translation = translateRelief(bumpBuilder(one.type).build());
        ASSERT_TRUE(translation.succeeded) << one.type;
        const Lines lines = nodeLines(translation.document);
        EXPECT_EQ(lines.empty() ? "" : lines.front(), one.category);
        EXPECT_EQ(translation.document->getNodeGraphs().empty(), lines.empty());
        EXPECT_EQ(translation.first(one.warning).property, "surface_normal/bumpmap_Type");
        EXPECT_TRUE(isSound(translation.document));
    }
}

struct BadTexture
{
    const char* what;
    const char* schema;
    const char* property;
    void (*add)(AssetBuilder&);
};

constexpr const char* bitmapSchema = "UnifiedBitmapSchema";
constexpr const char* bumpSchema = "BumpMapSchema";

const BadTexture badTextures[] = {
    {"a bitmap without version", bitmapSchema, "VersionGUID",
     [](AssetBuilder& t) { t.uri("unifiedbitmap_Bitmap", "a.png"); }},
    {"a bump map without version", bumpSchema, "VersionGUID",
     [](AssetBuilder& t) { t.uri("bumpmap_Bitmap", "a.png"); }},
    {"a path that is none", bumpSchema, "bumpmap_Bitmap",
     [](AssetBuilder& t) { t.scalar("bumpmap_Bitmap", 1); }},
    {"a type that is no choice", bumpSchema, "bumpmap_Type", [](AssetBuilder& t)
     { t.uri("bumpmap_Bitmap", "a.png").text("bumpmap_Type", "bumpmap_normal_map"); }},
    {"a depth that is no number", bumpSchema, "bumpmap_Depth",
     [](AssetBuilder& t) { t.uri("bumpmap_Bitmap", "a.png").boolean("bumpmap_Depth", true); }},
    {"a scale that is no number", bumpSchema, "bumpmap_NormalScale",
     [](AssetBuilder& t)
     {
         t.uri("bumpmap_Bitmap", "a.png")
             .choice("bumpmap_Type", "bumpmap_normal_map")
             .text("bumpmap_NormalScale", "1");
     }},
    {"an angle that is no number", bitmapSchema, "texture_WAngle",
     [](AssetBuilder& t) { t.uri("unifiedbitmap_Bitmap", "a.png").integer("texture_WAngle", 1); }},
    {"a flag that is none", bitmapSchema, "texture_URepeat",
     [](AssetBuilder& t) { t.uri("unifiedbitmap_Bitmap", "a.png").scalar("texture_URepeat", 1); }},
};

/// What is wrong with a texture ends the translation with its place, before anything is built.
TEST_F(LyrexMaps, ThatCannotBeReadFail)
{
    for (const BadTexture& one : badTextures)
    {
        SCOPED_TRACE(one.what);
        AssetBuilder builder(one.schema);
        if (std::string(one.property) != "VersionGUID")
            builder.text("VersionGUID", one.schema);
        one.add(builder);
        const Translation translation = translateRelief(builder.build());
        EXPECT_FALSE(translation.succeeded);
        EXPECT_TRUE(*translation.document == *mx::createDocument());
        ASSERT_FALSE(translation.diagnostics.empty());
        EXPECT_EQ(translation.diagnostics.back().severity, Severity::Error);
        EXPECT_EQ(translation.diagnostics.back().property,
                  std::string("surface_normal/") + one.property);
    }
}

/// Bitmaps say the same and two things more.
TEST_F(LyrexMaps, AndBitmapsShareThePlacement)
{
    AssetBuilder builder("UnifiedBitmapSchema");
    builder.text("VersionGUID", "UnifiedBitmapSchema").uri("unifiedbitmap_Bitmap", "bump.png");
    place(builder);
    builder.scalar("unifiedbitmap_RGBAmount", 0.75).boolean("unifiedbitmap_Invert", true);
    const Translation translation = translateRelief(builder.build());
    Lines expected{"kvor:bitmap", "file filename bump.png srgb_texture"};
    expected.insert(expected.end(), placement.begin(), placement.end());
    expected.emplace_back("rgbamount float 0.75");
    expected.emplace_back("invert boolean true");
    EXPECT_EQ(nodeLines(translation.document), expected);
    EXPECT_TRUE(isSound(translation.document));
}

struct PropertyUnit
{
    const char* schema;
    const char* property;
    std::uint32_t code;
    const char* unit;
    const char* unitType;
};

const PropertyUnit propertyUnits[] = {
    {"LyrexOpaqueSchema", "opaque_luminance", footlambert, "", ""},
    {"LyrexOpaqueSchema", "opaque_luminance", foot, "", ""},
    {"LyrexOpaqueSchema", "opaque_mfp", foot, "foot", "distance"},
    {"LyrexOpaqueSchema", "opaque_f0", 0x1001, "", ""},
    {"LyrexTransparentSchema", "transparent_distance", millimeter, "millimeter", "distance"},
    {"LyrexTransparentSchema", "transparent_distance", unknownDistance, "", "distance"},
    {"LyrexMetalSchema", "surface_rotation", 0x8001, "radians", "angle"},
    {"LyrexLayeredSchema", "layered_rotation", degrees, "degrees", "angle"},
    {"LyrexLayeredSchema", "layered_rotation", 0x37003, "candelapersquarefoot", "luminance"},
};

/// Units of the material's own numbers.
TEST_F(LyrexMaps, PlainNumbersKeepTheirUnits)
{
    for (const PropertyUnit& one : propertyUnits)
    {
        SCOPED_TRACE(one.property);
        const Translation translation =
            translate(lyrexBuilder(one.schema).scalar(one.property, 12.5, one.code).build());
        const mx::InputPtr input = inputOf(translation.document, "M_shader", one.property);
        ASSERT_NE(input, nullptr) << translation.report();
        EXPECT_EQ(input->getValueString(), "12.5");
        EXPECT_EQ(input->getUnit(), one.unit);
        EXPECT_EQ(input->getUnitType(), one.unitType);
        EXPECT_EQ(input->hasAttribute("unit"), *one.unit != '\0');
        EXPECT_TRUE(isSound(translation.document));
    }
}

} // namespace

} // namespace vyr::materialtests
