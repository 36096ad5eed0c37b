#include <filesystem>
#include <string>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

namespace fs = std::filesystem;

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

    const std::string _image = fs::path(VYR_SOURCE_DIR) / "samples/textures/tile_height.png";
};

TEST_F(Slots, AreConnectedToANodeOfTheRightType)
{
    AssetBuilder all;
    for (const Slot& slot : slots)
    {
        const AssetPtr bitmap = bitmapAsset(_image);
        if (slot.condition && std::string(slot.condition) != slots[3].property)
            all.scalar(slot.condition, 0.5);
        all.connect(slot.property, bitmap);
        const Translation one = translate(prepared(slot).connect(slot.property, bitmap).build());
        const mx::NodePtr node = nodeBehind(one.document, slot.input);
        ASSERT_TRUE(node) << slot.property << "\n" << one.report();
        EXPECT_EQ(node->getName(), slot.property);
        EXPECT_EQ(node->getType(), slot.type) << slot.property;
        EXPECT_EQ(node->getCategory(), &slot == &slots[7] ? "kvor:normal_map" : "kvor:bitmap");
        EXPECT_EQ(inputOf(one.document, "M_shader", slot.input)->getType(), slot.type);
        EXPECT_TRUE(one.diagnostics.empty()) << slot.property << "\n" << one.report();
        EXPECT_TRUE(isSound(one.document)) << slot.property;
    }
    const Translation together = translate(all.build());
    for (const Slot& slot : slots)
        EXPECT_TRUE(nodeBehind(together.document, slot.input)) << slot.property;
    EXPECT_EQ(together.document->getNodeGraphs().size(), 1u);
    EXPECT_TRUE(isSound(together.document));
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
    const auto expectMap = [&](AssetBuilder texture, const char* file, bool isBitmap)
    {
        texture.scalar("texture_RealWorldScaleX", 10, 0x2016);
        const Translation one =
            relief(texture.scalar("texture_RealWorldScaleY", 20, 0x2016).build());
        const mx::NodePtr node = nodeBehind(one.document, "normal");
        ASSERT_TRUE(node) << one.report();
        const std::string path = node->getInput("file")->getValueString();
        EXPECT_EQ(path, _folder.text() + "/M/" + file);
        EXPECT_TRUE(fs::is_regular_file(path));
        EXPECT_EQ(node->getInput("file")->getColorSpace(), "lin_rec709") << "normals are data";
        EXPECT_EQ(node->getInput("realworld_scale")->getValueString(), "10, 20");
        EXPECT_EQ(node->getInput("realworld_scale")->getUnit(), "inch");
        EXPECT_TRUE(isSound(one.document));
        // Noise is baked with its amount, and lies nowhere else.
        if (isBitmap)
        {
            EXPECT_EQ(node->getInput("normal_scale")->getValueString(), "0.5");
            EXPECT_EQ(node->getInput("rotation_angle")->getUnit(), "degrees");
            EXPECT_EQ(node->getInput("uaddressmode")->getValueString(), "periodic");
        }
    };
    AssetBuilder bitmap("UnifiedBitmapSchema");
    bitmap.uri("unifiedbitmap_Bitmap", _image).boolean("texture_URepeat", true);
    bitmap.scalar("texture_WAngle", 30, 0x8002);
    expectMap(std::move(bitmap), "tile_height_normalmap.png", true);
    for (const char* type : {"noise_regular", "noise_fractal", "noise_turbulence"})
    {
        AssetBuilder noise("NoiseSchema");
        noise.choice("noise_Type", type).scalar("noise_Size", 0.5);
        expectMap(std::move(noise), "generic_bump_map_64normal_map.png", false);
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

} // namespace

} // namespace vyr::hosttests
