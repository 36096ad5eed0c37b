#include <string>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

class Verbose : public HostTest
{
  protected:
    /// What a translation writes to standard output; the document must be that of a quiet one.
    std::string printed(const AssetPtr& asset, bool verbose = true) const
    {
        ConverterOptions options = plainOptions();
        const Translation quiet = translate(asset, options);
        options.verbose = verbose;
        ::testing::internal::CaptureStdout();
        const Translation translation = translate(asset, options);
        std::string text = ::testing::internal::GetCapturedStdout();
        EXPECT_EQ(translation.succeeded, quiet.succeeded);
        EXPECT_EQ(xmlOf(translation.document), xmlOf(quiet.document));
        EXPECT_EQ(translation.report(), quiet.report());
        return text;
    }

    static AssetBuilder oak()
    {
        AssetBuilder builder;
        builder.name("Oak").description("A warm wood").scalar("generic_glossiness", 0.25);
        return builder;
    }
};

TEST_F(Verbose, DescribesTheMaterialAndItsProperties)
{
    const std::string text = printed(oak().boolean("Hidden", true).build());
    EXPECT_EQ(text.rfind("Material Class:GenericSchema\nDescription: A warm wood\nName: Oak\n"
                         "Hidden or not: YES\n",
                         0),
              0u)
        << text;
    EXPECT_NE(text.find("generic_glossiness"), std::string::npos) << text;
    EXPECT_EQ(printed(oak().build(), false), "");
}

/// Talking never makes a material fail.
TEST_F(Verbose, TakesAMissingOrStrangeHiddenForNo)
{
    EXPECT_NE(printed(oak().boolean("Hidden", false).build()).find("Hidden or not: NO\n"),
              std::string::npos);
    EXPECT_NE(printed(oak().build()).find("Hidden or not: NO\n"), std::string::npos);
    EXPECT_NE(printed(oak().string("Hidden", "yes").build()).find("Hidden or not: NO\n"),
              std::string::npos);
}

TEST_F(Verbose, NamesTheSchemasOfTextures)
{
    const AssetPtr noise =
        AssetBuilder("NoiseSchema").choice("noise_Type", "noise_fractal").build();
    const AssetPtr broken = AssetBuilder("NoiseSchema").scalar("noise_Type", 1).build();
    const AssetPtr unselected =
        AssetBuilder("NoiseSchema").property("noise_Type", 10, choiceValue({"a"}, {})).build();
    for (const AssetPtr* texture : {&noise, &broken, &unselected})
        printed(
            oak().scalar("generic_bump_amount", 1).connect("generic_bump_map", *texture).build());
    const AssetPtr textured = oak()
                                  .color("generic_diffuse", 1, 1, 1)
                                  .connect("generic_diffuse", bitmapAsset("oak.png"))
                                  .build();
    EXPECT_NE(printed(textured).find("UnifiedBitmapSchema"), std::string::npos);
}

} // namespace

} // namespace vyr::hosttests
