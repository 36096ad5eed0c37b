#include <string>
#include <vector>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

/// A material with something that its document cannot say, and the one warning that tells of it.
class TextureWarnings : public HostTest
{
  protected:
    std::string image() const { return TemporaryFolder::utf8(_folder.write("wood.png", "")); }

    void expectOne(const AssetPtr& asset, DiagnosticCode code, const std::string& property) const
    {
        const Translation one = translate(asset);
        EXPECT_TRUE(one.succeeded);
        ASSERT_EQ(one.diagnostics.size(), 1u) << one.report();
        EXPECT_EQ(one.diagnostics[0].severity, Severity::Warning);
        EXPECT_EQ(diagnosticCodeName(one.diagnostics[0].code),
                  std::string(diagnosticCodeName(code)));
        EXPECT_EQ(one.diagnostics[0].property, property);
        EXPECT_EQ(one.diagnostics[0].asset, "asset-id");
    }

    static AssetPtr withBitmap(const AssetPtr& bitmap)
    {
        return AssetBuilder().connect("generic_diffuse", bitmap).build();
    }
};

TEST_F(TextureWarnings, TellOfImages)
{
    const std::string inside = "generic_diffuse/unifiedbitmap_Bitmap";
    const std::string folder = _folder.text();
    expectOne(withBitmap(bitmapAsset(folder + "/missing.png")), DiagnosticCode::TextureFileMissing,
              inside);
    expectOne(withBitmap(bitmapAsset(folder)), DiagnosticCode::TextureFileMissing, inside);
    expectOne(withBitmap(bitmapAsset("")), DiagnosticCode::TexturePathEmpty, inside);
    expectOne(withBitmap(AssetBuilder("UnifiedBitmapSchema").build()),
              DiagnosticCode::TexturePathEmpty, inside);
    for (const std::string& name :
         {std::string("a\nb"), std::string("a\0b", 3), std::string("\xFF.png")})
        expectOne(withBitmap(bitmapAsset(name)), DiagnosticCode::TextureNameRefused, inside);
}

TEST_F(TextureWarnings, TellOfAFadeBetweenNothingAndAll)
{
    for (const auto& [property, fade] :
         {std::pair("generic_diffuse", "generic_diffuse_image_fade"),
          {"generic_transparency", "generic_transparency_image_fade"}})
        for (const double value : {-1.0, 0.0, 0.001, 0.5, 0.999, 1.0, 2.0})
        {
            const AssetPtr asset =
                AssetBuilder().connect(property, bitmapAsset(image())).scalar(fade, value).build();
            if (value > 0 && value < 1)
                expectOne(asset, DiagnosticCode::FadeIgnored, fade);
            else
                EXPECT_TRUE(translate(asset).diagnostics.empty()) << value;
        }
    EXPECT_TRUE(translate(AssetBuilder().scalar("generic_diffuse_image_fade", 0.5).build())
                    .diagnostics.empty())
        << "there is no image to fade";
}

TEST_F(TextureWarnings, TellOfWhatIsNotRead)
{
    expectOne(withBitmap(AssetBuilder("UnifiedBitmapSchema")
                             .uri("unifiedbitmap_Bitmap", image())
                             .scalar("texture_RealWorldScalex", 2)
                             .build()),
              DiagnosticCode::PropertyUnread, "generic_diffuse/texture_RealWorldScalex");
    const AssetPtr bitmap = bitmapAsset(image());
    expectOne(AssetBuilder()
                  .connect("generic_diffuse", bitmap)
                  .connect("generic_diffuse", bitmap)
                  .build(),
              DiagnosticCode::ConnectionsIgnored, "generic_diffuse");
    for (const char* property : {"generic_bump_map", "generic_self_illum_filter_map",
                                 "generic_refraction_translucency_weight", "color_by_object"})
    {
        const Translation unused = translate(AssetBuilder().connect(property, bitmap).build());
        EXPECT_EQ(unused.diagnostics.size(), 1u) << property << "\n" << unused.report();
    }
    // A texture of a texture.
    expectOne(withBitmap(AssetBuilder("UnifiedBitmapSchema")
                             .uri("unifiedbitmap_Bitmap", image())
                             .scalar("unifiedbitmap_RGBAmount", 1)
                             .connect("unifiedbitmap_RGBAmount", bitmap)
                             .build()),
              DiagnosticCode::TextureUnused, "generic_diffuse/unifiedbitmap_RGBAmount");
}

/// One image that drives several inputs: each loss is told once for each place.
TEST_F(TextureWarnings, AreToldOnceForEachPlace)
{
    const AssetPtr missing = bitmapAsset(_folder.text() + "/missing.png");
    AssetBuilder builder;
    builder.connect("generic_diffuse", missing).connect("generic_cutout_opacity", missing);
    ConverterOptions options = plainOptions();
    options.copyTextures = true;
    const Translation one = translate(builder.build(), options);
    EXPECT_EQ(one.count(DiagnosticCode::TextureFileMissing), 2u) << one.report();
    EXPECT_EQ(one.diagnostics.size(), 2u);
}

} // namespace

} // namespace vyr::hosttests
