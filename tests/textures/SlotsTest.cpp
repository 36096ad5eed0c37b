#include <filesystem>
#include <string>

#include "graph/NodeLines.h"
#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

namespace fs = std::filesystem;
using graphtests::Lines;
using graphtests::linesOf;

/// A textured property of the Generic rules, the shader input that it drives, and what it needs to.
struct Slot
{
    const char* property;
    const char* input;
    const char* type;
    const char* condition;
};

const Slot slots[] = {
    {"generic_diffuse", "base_color", "color3", nullptr},
    {"generic_reflectivity_at_0deg", "specular", "float", nullptr},
    {"generic_glossiness", "specular_roughness", "float", nullptr},
    {"generic_transparency", "transmission", "float", nullptr},
    {"generic_refraction_translucency_weight", "transmission_color", "color3",
     "generic_transparency"},
    {"generic_cutout_opacity", "opacity", "color3", nullptr},
    {"generic_self_illum_filter_map", "emission_color", "color3", "generic_self_illum_luminance"},
    {"generic_bump_map", "normal", "vector3", "generic_bump_amount"},
};

class Slots : public HostTest
{
  protected:
    static AssetBuilder prepared(const Slot& slot)
    {
        AssetBuilder builder;
        if (slot.condition)
            builder.scalar(slot.condition, 0.5);
        return builder;
    }

    /// The node at the other end of a shader input's connection; null when there is none.
    static mx::NodePtr nodeBehind(const mx::DocumentPtr& document, const char* input)
    {
        const mx::InputPtr found = inputOf(document, "M_shader", input);
        const mx::OutputPtr output = found ? found->getConnectedOutput() : nullptr;
        return output ? output->getConnectedNode() : nullptr;
    }

    Translation relief(const AssetPtr& texture, std::uint64_t size = 64) const
    {
        return translate(prepared(slots[7]).connect("generic_bump_map", texture).build(),
                         with(&ConverterOptions::imageSize, size));
    }

    /// A material with something that its document cannot say, and the one warning that tells of it.
    void expectOne(AssetBuilder& material, DiagnosticCode code, const std::string& property) const
    {
        const Translation one = translate(material.build());
        EXPECT_TRUE(one.succeeded);
        ASSERT_EQ(one.diagnostics.size(), 1u) << property << "\n" << one.report();
        EXPECT_EQ(one.diagnostics[0].severity, Severity::Warning);
        EXPECT_EQ(one.count(code), 1u) << one.report();
        EXPECT_EQ(one.diagnostics[0].property, property);
        EXPECT_EQ(one.diagnostics[0].asset, "asset-id");
    }

    const std::string _image = fs::path(VYR_SOURCE_DIR) / "samples/textures/tile_height.png";
};

TEST_F(Slots, AreConnectedToANodeOfTheRightType)
{
    AssetBuilder all;
    all.scalar("generic_self_illum_luminance", 0.5).scalar("generic_bump_amount", 0.5);
    for (const Slot& slot : slots)
    {
        const AssetPtr bitmap = bitmapAsset(_image);
        all.connect(slot.property, bitmap);
        const Translation one = translate(prepared(slot).connect(slot.property, bitmap).build());
        const mx::NodePtr node = nodeBehind(one.document, slot.input);
        ASSERT_TRUE(node) << slot.property << "\n" << one.report();
        EXPECT_EQ(node->getName(), slot.property);
        EXPECT_EQ(linesOf(node)[0], (&slot == &slots[7] ? "kvor:normal_map " : "kvor:bitmap ") +
                                        std::string(slot.type));
        EXPECT_EQ(inputOf(one.document, "M_shader", slot.input)->getType(), slot.type);
        EXPECT_TRUE(one.diagnostics.empty()) << slot.property << "\n" << one.report();
        EXPECT_TRUE(isSound(one.document)) << slot.property;
    }
    const Translation together = translate(all.build());
    for (const Slot& slot : slots)
        EXPECT_TRUE(nodeBehind(together.document, slot.input)) << slot.property;
    EXPECT_EQ(together.document->getNodeGraphs().size(), 1u);
}

/// Only the bump slot takes noise; no slot takes what nobody knows.
TEST_F(Slots, WithoutATranslationKeepThePlainValueAndSaySo)
{
    for (const Slot& slot : slots)
        for (const std::string schema : {"CheckerSchema", "BumpMapSchema", "NoiseSchema", ""})
        {
            const bool isRelief = &slot == &slots[7];
            if (isRelief && schema == "NoiseSchema")
                continue;
            const Translation with = translate(
                prepared(slot).connect(slot.property, AssetBuilder(schema).build()).build());
            EXPECT_TRUE(with.succeeded);
            const Diagnostic told = with.first(DiagnosticCode::TextureNotTranslated);
            EXPECT_EQ(told.asset, "asset-id");
            EXPECT_EQ(told.property, slot.property);
            EXPECT_NE(told.text.find("\"" + schema + "\""), std::string::npos);
            EXPECT_EQ(with.diagnostics.size(), 1u) << with.report();
            EXPECT_TRUE(with.document->getNodeGraphs().empty());
            const mx::InputPtr input = inputOf(with.document, "M_shader", slot.input);
            EXPECT_EQ(input == nullptr, isRelief);
            EXPECT_TRUE(!input || input->hasValueString()) << slot.property;
        }
}

/// Roughness is 1 - glossiness, whatever the image's own inversion and amount are.
TEST_F(Slots, OfGlossinessTurnTheImageRound)
{
    for (const bool inverted : {false, true})
        for (const std::int32_t mode : {2, 1})
        {
            AssetBuilder bitmap("UnifiedBitmapSchema");
            bitmap.uri("unifiedbitmap_Bitmap", _image).boolean("unifiedbitmap_Invert", inverted);
            const Translation one =
                translate(AssetBuilder().connect("generic_glossiness", bitmap.build()).build(),
                          with(&ConverterOptions::roughnessMode, mode));
            const mx::NodePtr node = nodeBehind(one.document, "specular_roughness");
            ASSERT_TRUE(node);
            EXPECT_EQ(node->getInput("invert")->getValueString(), inverted ? "false" : "true");
            EXPECT_EQ(one.count(DiagnosticCode::ValueAdjusted), mode == 2 ? 0u : 1u)
                << "a curve cannot be applied to an image";
        }
}

TEST_F(Slots, OfReliefReadABakedMap)
{
    AssetBuilder bitmap("UnifiedBitmapSchema");
    bitmap.uri("unifiedbitmap_Bitmap", _image).boolean("texture_URepeat", true);
    bitmap.scalar("texture_WAngle", 30, 0x8002);
    AssetBuilder noise("NoiseSchema");
    noise.choice("noise_Type", "noise_turbulence").scalar("noise_Size", 0.5);
    for (AssetBuilder* const texture : {&bitmap, &noise})
    {
        texture->scalar("texture_RealWorldScaleX", 10, 0x2016);
        const Translation one =
            relief(texture->scalar("texture_RealWorldScaleY", 20, 0x2016).build());
        const mx::NodePtr node = nodeBehind(one.document, "normal");
        ASSERT_TRUE(node) << one.report();
        const std::string path = node->getInput("file")->getValueString();
        EXPECT_TRUE(fs::is_regular_file(path)) << path;
        EXPECT_TRUE(isSound(one.document));
        const Lines placed{"kvor:normal_map vector3",
                           "file filename value=" + path + " colorspace=lin_rec709",
                           "realworld_offset vector2 value=0, 0",
                           "realworld_scale vector2 value=10, 20 unit=inch unittype=distance",
                           "uv_offset vector2 value=0, 0",
                           "uv_scale vector2 value=1, 1",
                           "uaddressmode string value=periodic",
                           "vaddressmode string value=clamp",
                           "rotation_angle float value=30 unit=degrees unittype=angle",
                           "normal_scale float value=0.5"};
        const bool isNoise = texture == &noise;
        EXPECT_EQ(path, _folder.text() + "/M/" +
                            (isNoise ? "generic_bump_map_64normal_map.png"
                                     : "tile_height_normalmap.png"));
        // Noise is baked with its amount, and lies nowhere else.
        EXPECT_EQ(linesOf(node), isNoise ? (Lines{placed[0], placed[1], placed[3]}) : placed);
    }
}

/// What cannot be baked leaves the surface smooth, and says so.
TEST_F(Slots, OfReliefThatCannotBeBakedStayEmpty)
{
    const std::string broken = TemporaryFolder::utf8(_folder.write("broken.png", "no image"));
    for (const Translation& one :
         {relief(bitmapAsset(broken)), relief(bitmapAsset(_folder.text() + "/missing.png")),
          relief(AssetBuilder("NoiseSchema").choice("noise_Type", "noise_regular").build(),
                 ~std::uint64_t{0})})
    {
        EXPECT_TRUE(one.succeeded);
        EXPECT_EQ(inputOf(one.document, "M_shader", "normal"), nullptr);
        EXPECT_TRUE(one.document->getNodeGraphs().empty());
        EXPECT_EQ(one.count(DiagnosticCode::BakeFailed), 1u) << one.report();
    }
}

TEST_F(Slots, TellOfImages)
{
    const auto expect = [&](const std::string& path, DiagnosticCode code)
    {
        AssetBuilder material;
        expectOne(material.connect("generic_diffuse", bitmapAsset(path)), code,
                  "generic_diffuse/unifiedbitmap_Bitmap");
    };
    expect(_folder.text() + "/missing.png", DiagnosticCode::TextureFileMissing);
    expect(_folder.text(), DiagnosticCode::TextureFileMissing);
    expect("", DiagnosticCode::TexturePathEmpty);
    for (const std::string& name :
         {std::string("a\nb"), std::string("a\0b", 3), std::string("\xFF")})
        expect(name, DiagnosticCode::TextureNameRefused);
    // An image that drives several inputs is told of once for each.
    const AssetPtr missing = bitmapAsset(_folder.text() + "/missing.png");
    AssetBuilder builder;
    builder.connect("generic_diffuse", missing).connect("generic_cutout_opacity", missing);
    const Translation one = translate(builder.build(), with(&ConverterOptions::copyTextures, true));
    EXPECT_EQ(one.count(DiagnosticCode::TextureFileMissing), 2u) << one.report();
    EXPECT_EQ(one.diagnostics.size(), 2u);
}

TEST_F(Slots, TellOfAFadeBetweenNothingAndAll)
{
    for (const std::string property : {"generic_diffuse", "generic_transparency"})
        for (const double value : {-1.0, 0.0, 0.001, 0.999, 1.0, 2.0})
        {
            const std::string fade = property + "_image_fade";
            AssetBuilder asset;
            asset.connect(property, bitmapAsset(_image)).scalar(fade, value);
            if (value > 0 && value < 1)
                expectOne(asset, DiagnosticCode::FadeIgnored, fade);
            else
                EXPECT_TRUE(translate(asset.build()).diagnostics.empty()) << value;
        }
}

TEST_F(Slots, TellOfWhatIsNotRead)
{
    const auto bitmap = [&]
    {
        AssetBuilder builder("UnifiedBitmapSchema");
        return std::move(builder.uri("unifiedbitmap_Bitmap", _image));
    };
    const AssetPtr plain = bitmap().build();
    const AssetPtr misspelt = bitmap().scalar("texture_RealWorldScalex", 2).build();
    const AssetPtr textured = bitmap()
                                  .scalar("unifiedbitmap_RGBAmount", 1)
                                  .connect("unifiedbitmap_RGBAmount", plain)
                                  .build();
    expectOne(AssetBuilder().connect("generic_diffuse", misspelt), DiagnosticCode::PropertyUnread,
              "generic_diffuse/texture_RealWorldScalex");
    expectOne(AssetBuilder().connect("generic_diffuse", textured), DiagnosticCode::TextureUnused,
              "generic_diffuse/unifiedbitmap_RGBAmount");
    expectOne(AssetBuilder().connect("generic_diffuse", plain).connect("generic_diffuse", plain),
              DiagnosticCode::ConnectionsIgnored, "generic_diffuse");
    for (const char* property : {"generic_bump_map", "generic_self_illum_filter_map",
                                 "generic_refraction_translucency_weight", "color_by_object"})
    {
        const Translation unused = translate(AssetBuilder().connect(property, plain).build());
        EXPECT_EQ(unused.diagnostics.size(), 1u) << property << "\n" << unused.report();
    }
}

} // namespace

} // namespace vyr::hosttests
