#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

namespace fs = std::filesystem;

/// A textured property of the Generic rules, the shader input that it drives, and the node that does it.
struct Slot
{
    const char* property;
    const char* input;
    const char* type;
    void (*prepare)(AssetBuilder&);
};

const Slot slots[] = {
    {"generic_diffuse", "base_color", "color3", [](AssetBuilder&) {}},
    {"generic_reflectivity_at_0deg", "specular", "float", [](AssetBuilder&) {}},
    {"generic_glossiness", "specular_roughness", "float", [](AssetBuilder&) {}},
    {"generic_transparency", "transmission", "float",
     [](AssetBuilder& a) { a.scalar("generic_transparency_image_fade", 1); }},
    {"generic_refraction_translucency_weight", "transmission_color", "color3",
     [](AssetBuilder& a) { a.scalar("generic_transparency", 0.5); }},
    {"generic_cutout_opacity", "opacity", "color3", [](AssetBuilder&) {}},
    {"generic_self_illum_filter_map", "emission_color", "color3",
     [](AssetBuilder& a) { a.scalar("generic_self_illum_luminance", 100); }},
    {"generic_bump_map", "normal", "vector3",
     [](AssetBuilder& a) { a.scalar("generic_bump_amount", 0.5); }},
};

AssetPtr noiseAsset(const char* type = "noise_regular")
{
    return AssetBuilder("NoiseSchema")
        .choice("noise_Type", type)
        .scalar("noise_Size", 0.5)
        .scalar("texture_RealWorldScaleX", 2, 0x200D)
        .scalar("texture_RealWorldScaleY", 2, 0x200D)
        .build();
}

class Slots : public HostTest
{
  protected:
    std::string image(const std::string& sample = "tile_height.png") const
    {
        const fs::path to = _folder / sample;
        if (!fs::exists(to))
            fs::copy_file(fs::path(VYR_SOURCE_DIR) / "samples/textures" / sample, to);
        return TemporaryFolder::utf8(to);
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
        ConverterOptions options = plainOptions();
        options.imageSize = size;
        return translate(AssetBuilder()
                             .scalar("generic_bump_amount", 0.5)
                             .connect("generic_bump_map", texture)
                             .build(),
                         options);
    }
};

TEST_F(Slots, AreConnectedToANodeOfTheRightType)
{
    AssetBuilder all;
    for (const Slot& slot : slots)
    {
        AssetBuilder builder;
        slot.prepare(builder);
        slot.prepare(all);
        const AssetPtr bitmap = bitmapAsset(image());
        all.connect(slot.property, bitmap);
        const Translation one = translate(builder.connect(slot.property, bitmap).build());
        const mx::NodePtr node = nodeBehind(one.document, slot.input);
        ASSERT_TRUE(node) << slot.property << "\n" << one.report();
        EXPECT_EQ(node->getName(), slot.property);
        EXPECT_EQ(node->getType(), slot.type) << slot.property;
        const bool isRelief = std::string(slot.input) == "normal";
        EXPECT_EQ(node->getCategory(), isRelief ? "kvor:normal_map" : "kvor:bitmap");
        EXPECT_EQ(inputOf(one.document, "M_shader", slot.input)->getType(), slot.type);
        EXPECT_TRUE(one.diagnostics.empty()) << slot.property << "\n" << one.report();
        EXPECT_TRUE(isSound(one.document)) << slot.property;
    }
    const Translation together = translate(all.build());
    ASSERT_TRUE(together.succeeded) << together.report();
    for (const Slot& slot : slots)
        EXPECT_TRUE(nodeBehind(together.document, slot.input)) << slot.property;
    EXPECT_EQ(together.document->getNodeGraphs().size(), 1u);
    EXPECT_TRUE(isSound(together.document));
}

/// Only the bump slot takes noise; no slot takes what nobody knows.
TEST_F(Slots, WithoutATranslationKeepThePlainValueAndSaySo)
{
    for (const Slot& slot : slots)
        for (const char* schema :
             {"CheckerSchema", "GradientSchema", "BumpMapSchema", "NoiseSchema", ""})
        {
            const bool isRelief = std::string(slot.input) == "normal";
            if (isRelief && std::string(schema) == "NoiseSchema")
                continue;
            AssetBuilder plain;
            slot.prepare(plain);
            AssetBuilder textured;
            slot.prepare(textured);
            textured.connect(slot.property, AssetBuilder(schema).build());
            const Translation with = translate(textured.build());
            EXPECT_TRUE(with.succeeded);
            const Diagnostic told = with.first(DiagnosticCode::TextureNotTranslated);
            EXPECT_EQ(told.asset, "asset-id");
            EXPECT_EQ(told.property, slot.property);
            EXPECT_NE(told.text.find("\"" + std::string(schema) + "\""), std::string::npos);
            EXPECT_EQ(with.diagnostics.size(), 1u) << with.report();
            EXPECT_FALSE(nodeBehind(with.document, slot.input));
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
            bitmap.uri("unifiedbitmap_Bitmap", image()).boolean("unifiedbitmap_Invert", inverted);
            ConverterOptions options = plainOptions();
            options.roughnessMode = mode;
            const Translation one = translate(
                AssetBuilder().connect("generic_glossiness", bitmap.build()).build(), options);
            const mx::NodePtr node = nodeBehind(one.document, "specular_roughness");
            ASSERT_TRUE(node);
            EXPECT_EQ(node->getInput("invert")->getValueString(), inverted ? "false" : "true");
            EXPECT_EQ(one.count(DiagnosticCode::ValueAdjusted), mode == 2 ? 0u : 1u)
                << "a curve cannot be applied to an image";
        }
}

TEST_F(Slots, OfABitmapReliefReadABakedMap)
{
    const AssetPtr bitmap = AssetBuilder("UnifiedBitmapSchema")
                                .uri("unifiedbitmap_Bitmap", image())
                                .scalar("texture_RealWorldScaleX", 10, 0x2016)
                                .scalar("texture_RealWorldScaleY", 20, 0x2016)
                                .scalar("texture_WAngle", 30, 0x8002)
                                .boolean("texture_URepeat", true)
                                .build();
    const Translation one = relief(bitmap);
    const mx::NodePtr node = nodeBehind(one.document, "normal");
    ASSERT_TRUE(node) << one.report();
    const mx::InputPtr file = node->getInput("file");
    EXPECT_EQ(file->getValueString(), _folder.text() + "/M/tile_height_normalmap.png");
    EXPECT_TRUE(fs::is_regular_file(file->getValueString()));
    EXPECT_EQ(file->getColorSpace(), "lin_rec709") << "normals are data";
    EXPECT_EQ(node->getInput("normal_scale")->getValueString(), "0.5");
    EXPECT_EQ(node->getInput("realworld_scale")->getValueString(), "10, 20");
    EXPECT_EQ(node->getInput("realworld_scale")->getUnit(), "inch");
    EXPECT_EQ(node->getInput("rotation_angle")->getUnit(), "degrees");
    EXPECT_EQ(node->getInput("uaddressmode")->getValueString(), "periodic");
    EXPECT_TRUE(isSound(one.document));
}

TEST_F(Slots, OfNoiseReliefReadABakedMap)
{
    for (const char* type : {"noise_regular", "noise_fractal", "noise_turbulence"})
    {
        const Translation one = relief(noiseAsset(type));
        const mx::NodePtr node = nodeBehind(one.document, "normal");
        ASSERT_TRUE(node) << type << one.report();
        const std::string file = node->getInput("file")->getValueString();
        EXPECT_EQ(file, _folder.text() + "/M/generic_bump_map_64normal_map.png");
        EXPECT_TRUE(fs::is_regular_file(file));
        EXPECT_EQ(node->getInput("file")->getColorSpace(), "lin_rec709");
        EXPECT_EQ(node->getInput("realworld_scale")->getUnit(), "centimeter");
        EXPECT_TRUE(isSound(one.document)) << type;
    }
}

/// What cannot be baked leaves the surface smooth, and says so.
TEST_F(Slots, OfReliefThatCannotBeBakedStayEmpty)
{
    const std::string broken = TemporaryFolder::utf8(_folder.write("broken.png", "no image"));
    const std::string missing = TemporaryFolder::utf8(_folder / "missing.png");
    for (const std::string& path : {broken, missing})
    {
        const Translation one = relief(bitmapAsset(path));
        EXPECT_TRUE(one.succeeded);
        EXPECT_EQ(inputOf(one.document, "M_shader", "normal"), nullptr);
        EXPECT_TRUE(one.document->getNodeGraphs().empty());
        EXPECT_EQ(one.count(DiagnosticCode::BakeFailed), 1u) << one.report();
    }
    const Translation enormous = relief(noiseAsset(), ~std::uint64_t{0});
    EXPECT_TRUE(enormous.succeeded);
    EXPECT_EQ(enormous.count(DiagnosticCode::BakeFailed), 1u) << enormous.report();
}

} // namespace

} // namespace vyr::hosttests
