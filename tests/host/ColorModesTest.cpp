#include <cmath>
#include <string>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

using ColorModes = HostTest;

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

TEST_F(ColorModes, DecodeOrStateTheColoursOfTheAssetAndNothingElse)
{
    const AssetPtr asset = AssetBuilder()
                               .color("generic_diffuse", 0, 0.25, 1)
                               .scalar("generic_self_illum_luminance", 100)
                               .color("generic_self_illum_filter_map", 0.75, 0.01, 0.5)
                               .scalar("generic_transparency", 0.5)
                               .build();
    for (const auto& [mode, power, colorSpace] : modeCases)
    {
        SCOPED_TRACE(mode);
        const Translation translation = translate(asset, with(&ConverterOptions::colorMode, mode));
        for (const auto& [input, color] : {std::pair("base_color", mx::Color3(0, 0.25f, 1)),
                                           {"emission_color", mx::Color3(0.75f, 0.01f, 0.5f)},
                                           {"transmission_color", mx::Color3(1, 1, 1)}})
        {
            const mx::InputPtr written = inputOf(translation.document, "M_shader", input);
            ASSERT_TRUE(written);
            EXPECT_EQ(written->getColorSpace(), colorSpace) << input;
            for (std::size_t channel = 0; channel < 3; ++channel)
                EXPECT_NEAR(written->getValue()->asA<mx::Color3>()[channel],
                            std::pow(color[channel], power), 1e-5)
                    << input;
        }
        EXPECT_EQ(translation.document->getColorSpace(), "lin_rec709");
        EXPECT_TRUE(hasInputs(translation.document, "M_shader",
                              {{"transmission", "0.5"}, {"emission", "0.1"}}));
        EXPECT_TRUE(isSound(translation.document));
    }
}

} // namespace

} // namespace vyr::hosttests
