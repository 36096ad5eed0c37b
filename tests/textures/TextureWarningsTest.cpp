#include <string>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

/// A material with something that its document cannot say, and the one warning that tells of it.
class TextureWarnings : public HostTest
{
  protected:
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

    const std::string _image = TemporaryFolder::utf8(_folder.write("wood.png", ""));
};

TEST_F(TextureWarnings, TellOfImages)
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

TEST_F(TextureWarnings, TellOfAFadeBetweenNothingAndAll)
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

TEST_F(TextureWarnings, TellOfWhatIsNotRead)
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
