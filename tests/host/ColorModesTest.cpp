#include <cmath>
#include <string>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

struct ModeCase
{
    int mode;
    /// The power that plain values are decoded with.
    double power;
    const char* colorSpace;
};

const ModeCase modeCases[] = {
    {0, 1, "lin_rec709"},  {1, 2.2, "lin_rec709"},     {2, 2.4, "lin_rec709"},
    {3, 1, "g22_rec709"},  {4, 1, "rec709_display"},   {5, 1, "lin_rec709"},
    {-1, 1, "lin_rec709"}, {1 << 30, 1, "lin_rec709"},
};

class ColorModes : public HostTest
{
  protected:
    ConverterOptions inMode(int mode) const
    {
        ConverterOptions options = plainOptions();
        options.colorMode = mode;
        return options;
    }

    static void expectColor(const Translation& translation, const char* input, const ModeCase& one,
                            const mx::Color3& color)
    {
        const mx::InputPtr written = inputOf(translation.document, "M_shader", input);
        ASSERT_NE(written, nullptr);
        EXPECT_EQ(written->getActiveColorSpace(), one.colorSpace) << input << " in " << one.mode;
        const auto value = written->getValue()->asA<mx::Color3>();
        for (std::size_t channel = 0; channel < 3; ++channel)
            EXPECT_NEAR(value[channel], std::pow(color[channel], one.power), 1e-5)
                << input << " in mode " << one.mode;
    }
};

TEST_F(ColorModes, DecodeOrStateTheColoursOfTheAsset)
{
    const AssetPtr asset = AssetBuilder()
                               .color("generic_diffuse", 0, 0.25, 1)
                               .scalar("generic_self_illum_luminance", 100)
                               .color("generic_self_illum_filter_map", 0.75, 0.01, 0.5)
                               .build();
    for (const ModeCase& one : modeCases)
    {
        const Translation translation = translate(asset, inMode(one.mode));
        ASSERT_TRUE(translation.succeeded);
        expectColor(translation, "base_color", one, mx::Color3(0, 0.25f, 1));
        expectColor(translation, "emission_color", one, mx::Color3(0.75f, 0.01f, 0.5f));
        expectColor(translation, "transmission_color", one, mx::Color3(1, 1, 1));
        EXPECT_EQ(inputOf(translation.document, "M_shader", "base_color")->getColorSpace(),
                  one.colorSpace);
        EXPECT_EQ(translation.document->getColorSpace(), "lin_rec709");
        EXPECT_TRUE(isSound(translation.document));
    }
}

TEST_F(ColorModes, TouchNoOtherInput)
{
    const AssetPtr asset = AssetBuilder()
                               .scalar("generic_glossiness", 0.3)
                               .scalar("generic_transparency", 0.5)
                               .scalar("generic_refraction_translucency_weight", 0.5)
                               .build();
    for (const ModeCase& one : modeCases)
    {
        const Translation translation = translate(asset, inMode(one.mode));
        EXPECT_TRUE(hasInputs(translation.document, "M_shader",
                              {{"specular_roughness", "0.7"},
                               {"transmission", "0.5"},
                               {"subsurface", "0.5"},
                               {"opacity", "1, 1, 1"}}))
            << one.mode;
    }
}

/// A power of a negative number is none.
TEST_F(ColorModes, WriteNumbersForColoursOutsideTheRange)
{
    const AssetPtr asset = AssetBuilder().color("generic_diffuse", -0.5, 1e30, 2).build();
    for (const ModeCase& one : modeCases)
    {
        const Translation translation = translate(asset, inMode(one.mode));
        if (!translation.succeeded)
        {
            EXPECT_FALSE(translation.diagnostics.empty());
            continue;
        }
        const mx::InputPtr input = inputOf(translation.document, "M_shader", "base_color");
        const mx::ValuePtr value = input->getValue();
        ASSERT_TRUE(value && value->isA<mx::Color3>()) << input->getValueString();
        const auto color = value->asA<mx::Color3>();
        for (std::size_t channel = 0; channel < 3; ++channel)
            EXPECT_TRUE(std::isfinite(color[channel])) << one.mode;
        EXPECT_TRUE(isSound(translation.document)) << one.mode;
    }
}

} // namespace

} // namespace vyr::hosttests
