#include <functional>
#include <string>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

/// @param image of textures; none when empty.
AssetPtr richMaterial(const std::string& schema, const std::string& image = "")
{
    AssetBuilder builder(schema);
    builder.color("hardwood_tint_color", 1, 0, 0).boolean("Hidden", true);
    if (schema != "GenericSchema")
        builder.generic();
    builder.color("generic_diffuse", 1, 0, 0).boolean("generic_is_metal", true);
    for (const char* property : {"generic_reflectivity_at_0deg", "generic_glossiness",
                                 "generic_transparency", "generic_refraction_index",
                                 "generic_self_illum_luminance", "generic_bump_amount", "unread"})
        builder.scalar(property, 0.5);
    builder.color("generic_self_illum_filter_map", 1, 1, 0);
    for (const char* property :
         {"generic_diffuse", "generic_reflectivity_at_0deg", "generic_glossiness",
          "generic_cutout_opacity", "generic_self_illum_filter_map", "generic_bump_map"})
        if (!image.empty())
            builder.connect(property, bitmapAsset(image));
    return builder.build();
}

class References : public HostTest
{
  protected:
    /// Runs `operation` again and again, each time letting the next of the host's operations throw,
    /// until one run meets no failure. Every failure must reach the caller, be told of, leave nothing
    /// registered and give every reference back.
    static void failEverywhere(const std::function<void()>& operation,
                               const std::function<void()>& afterFailure)
    {
        const std::size_t before = liveAssets();
        for (std::size_t operations = 0; operations < 5000; ++operations)
        {
            failAfter(operations);
            try
            {
                operation();
                ASSERT_TRUE(cancelFailure()) << "failure " << operations << " was swallowed";
                return;
            }
            catch (const HostFault& fault)
            {
                EXPECT_TRUE(!lastCodes().empty() && lastCodes().back() == DiagnosticCode::Exception)
                    << operations << ": " << fault.what() << " is not told of";
            }
            EXPECT_EQ(liveAssets(), before) << operations;
            EXPECT_EQ(registeredAssetCount(), 0u) << operations;
            afterFailure();
        }
        FAIL() << "there is no end";
    }

    static void translateUnderFailures(const AssetPtr& asset, ConverterOptions options,
                                       bool isTextured)
    {
        MaterialXConverter converter(options);
        mx::DocumentPtr document;
        failEverywhere(
            [&]
            {
                document = mx::createDocument();
                EXPECT_TRUE(converter.TranslateToMaterialX(*asset, "M", document));
            },
            // Only textures are still read when building has begun.
            [&] { EXPECT_TRUE(isTextured || document->getChildren().empty()); });
        EXPECT_TRUE(isSound(document));
    }
};

TEST_F(References, ComeBackFromATranslationWhateverFails)
{
    for (const char* schema : {"GenericSchema", "HardwoodSchema", "MetallicPaintSchema",
                               "SolidGlassSchema", "WaterSchema"})
        translateUnderFailures(richMaterial(schema), plainOptions(), false);
    translateUnderFailures(richMaterial("GenericSchema", "wood.png"), plainOptions(), true);
    ::testing::internal::CaptureStdout();
    translateUnderFailures(richMaterial("GenericSchema"), with(&ConverterOptions::verbose, true),
                           false);
    ::testing::internal::GetCapturedStdout();
}

TEST_F(References, ComeBackFromRegistrationAndDrainingWhateverFails)
{
    ConverterOptions options = plainOptions();
    MaterialXConverter converter(options);
    const AssetPtr asset = richMaterial("GenericSchema", "wood.png");
    failEverywhere(
        [&]
        {
            StringSink message;
            EXPECT_TRUE(converter.RegisterAssetForConversion(*asset, message));
            EXPECT_TRUE(converter.SerializeRegisteredAssetsForConversion(message, nullptr));
        },
        [] {});
}

TEST_F(References, ComeBackFromALateRefusal)
{
    AssetBuilder refused;
    refused.connect("generic_diffuse", bitmapAsset("wood.png")).string("generic_bump_amount", "1");
    const AssetPtr asset = refused.build();
    EXPECT_FALSE(translate(asset).succeeded);
    EXPECT_EQ(liveAssets(), 2u);
}

} // namespace

} // namespace vyr::hosttests
