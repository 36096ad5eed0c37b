#include <functional>
#include <string>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

/// Runs `operation` again and again, each time letting the next of the host's operations throw,
/// until one run meets no failure. Every failure must reach the caller; that every reference comes
/// back is what `afterFailure` and the fixture look at.
void failEverywhere(const std::function<void()>& operation,
                    const std::function<void()>& afterFailure)
{
    constexpr std::size_t limit = 5000;
    for (std::size_t operations = 0; operations < limit; ++operations)
    {
        failAfter(operations);
        try
        {
            operation();
            if (cancelFailure())
                return;
            ADD_FAILURE() << "the failure of operation " << operations << " was swallowed";
        }
        catch (const HostFault& fault)
        {
            const auto& told = lastDiagnostics();
            EXPECT_TRUE(!told.empty() && told.back().code == DiagnosticCode::Exception)
                << operations << ": " << fault.what() << " is not told of";
        }
        afterFailure();
    }
    FAIL() << "no end after " << limit << " operations";
}

AssetBuilder richMaterial()
{
    AssetBuilder builder;
    builder.color("generic_diffuse", 1, 0, 0)
        .scalar("generic_reflectivity_at_0deg", 0.5)
        .boolean("generic_is_metal", true)
        .scalar("generic_glossiness", 0.5)
        .scalar("generic_transparency", 0.5)
        .scalar("generic_refraction_index", 1.4)
        .scalar("generic_self_illum_luminance", 100)
        .color("generic_self_illum_filter_map", 1, 1, 0)
        .scalar("generic_bump_amount", 1)
        .scalar("unread", 1);
    return builder;
}

AssetPtr texturedMaterial()
{
    const AssetPtr bitmap = bitmapAsset("wood.png");
    AssetBuilder builder = richMaterial();
    for (const char* property :
         {"generic_diffuse", "generic_reflectivity_at_0deg", "generic_glossiness",
          "generic_cutout_opacity", "generic_self_illum_filter_map", "generic_bump_map"})
        builder.connect(property, bitmap);
    return builder.build();
}

class References : public HostTest
{
  protected:
    /// Translates under failures; the document must stay as it was unless the material has textures.
    void translateUnderFailures(const AssetPtr& asset, bool verbose, bool expectUntouched) const
    {
        ConverterOptions options = plainOptions();
        options.verbose = verbose;
        MaterialXConverter converter(options);
        mx::DocumentPtr document;
        const std::size_t before = liveAssets();
        failEverywhere(
            [&]
            {
                document = mx::createDocument();
                EXPECT_TRUE(converter.TranslateToMaterialX(*asset, "M", document));
            },
            [&]
            {
                EXPECT_EQ(liveAssets(), before);
                EXPECT_TRUE(!expectUntouched || document->getChildren().empty());
            });
        EXPECT_TRUE(isSound(document));
    }
};

TEST_F(References, ComeBackFromAPlainMaterialWhateverFails)
{
    translateUnderFailures(richMaterial().build(), false, true);
}

TEST_F(References, ComeBackFromAVerboseTranslationWhateverFails)
{
    ::testing::internal::CaptureStdout();
    translateUnderFailures(richMaterial().boolean("Hidden", true).build(), true, true);
    ::testing::internal::GetCapturedStdout();
}

TEST_F(References, ComeBackFromATexturedMaterialWhateverFails)
{
    translateUnderFailures(texturedMaterial(), false, false);
}

TEST_F(References, ComeBackFromAGenericTableWhateverFails)
{
    for (const char* schema :
         {"HardwoodSchema", "MetallicPaintSchema", "SolidGlassSchema", "WaterSchema"})
        translateUnderFailures(AssetBuilder(schema)
                                   .color("hardwood_tint_color", 1, 0, 0)
                                   .generic()
                                   .color("generic_diffuse", 1, 0, 0)
                                   .scalar("generic_transparency", 0.5)
                                   .build(),
                               false, true);
}

TEST_F(References, ComeBackFromRegistrationAndDrainingWhateverFails)
{
    ConverterOptions options = plainOptions();
    MaterialXConverter converter(options);
    const AssetPtr asset = texturedMaterial();
    const std::size_t before = liveAssets();
    failEverywhere(
        [&]
        {
            StringSink message;
            EXPECT_TRUE(converter.RegisterAssetForConversion(*asset, message));
            EXPECT_TRUE(converter.SerializeRegisteredAssetsForConversion(message, nullptr));
        },
        [&]
        {
            EXPECT_EQ(registeredAssetCount(), 0u);
            EXPECT_EQ(liveAssets(), before);
        });
}

TEST_F(References, ComeBackFromSuccessAndFromRefusal)
{
    const AssetPtr asset = texturedMaterial();
    const std::size_t before = liveAssets();
    EXPECT_TRUE(translate(asset).succeeded);
    EXPECT_EQ(liveAssets(), before);

    AssetBuilder refused;
    refused.color("generic_diffuse", 1, 1, 1)
        .connect("generic_diffuse", bitmapAsset("wood.png"))
        .string("generic_bump_amount", "1");
    const AssetPtr late = refused.build();
    EXPECT_FALSE(translate(late).succeeded);
    EXPECT_EQ(liveAssets(), before + 2);
}

} // namespace

} // namespace vyr::hosttests
