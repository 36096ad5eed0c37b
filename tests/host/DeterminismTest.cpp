#include <clocale>
#include <locale>
#include <memory>
#include <thread>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

/// Decimal commas, dots between thousands and words for Booleans that are not MaterialX's.
class CommaPunctuation : public std::numpunct<char>
{
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
    std::string do_truename() const override { return "wahr"; }
    std::string do_falsename() const override { return "falsch"; }
};

bool hasCommas()
{
    return *std::localeconv()->decimal_point == ',';
}

class Determinism : public HostTest
{
  protected:
    Determinism()
    {
        const AssetPtr image = bitmapAsset("wood.png");
        for (int seed = 0; seed < 40; ++seed)
        {
            AssetBuilder builder;
            builder.name("Material " + std::to_string(seed)).scalar("unread", 1);
            builder.color("generic_diffuse", seed / 100.0, 0.123456789, 0.5);
            builder.scalar("generic_glossiness", seed / 97.0).scalar("generic_transparency", 0.25);
            builder.scalar("generic_refraction_index", 1234.5 + seed);
            builder.scalar("generic_refraction_translucency_weight", 0.5);
            builder.scalar("generic_self_illum_luminance", 123456789.0 / (seed + 1));
            _assets.push_back(builder.connect("generic_cutout_opacity", image).build());
        }
        for (auto& converter : _converters)
            converter = std::make_unique<MaterialXConverter>(_options);
    }
    void TearDown() override
    {
        _assets.clear();
        HostTest::TearDown();
    }

    /// All documents, with what was said about them.
    std::string texts(MaterialXConverter& converter) const
    {
        std::string result;
        for (const AssetPtr& asset : _assets)
        {
            const auto document = mx::createDocument();
            EXPECT_TRUE(converter.TranslateToMaterialX(*asset, converter.getMaterialName(*asset),
                                                       document));
            result += xmlOf(document) + Translation{true, document, lastDiagnostics()}.report();
        }
        return result;
    }

    /// Those, and what registration and serialisation deliver.
    std::string everything()
    {
        StringSink message;
        EXPECT_TRUE(_converters[0]->RegisterAssetForConversion(*_assets[7], message));
        EXPECT_TRUE(_converters[0]->SerializeRegisteredAssetsForConversion(message, nullptr));
        return texts(*_converters[0]) + message.text;
    }

    ConverterOptions _options = with(&ConverterOptions::roughnessMode, 1);
    std::vector<AssetPtr> _assets;
    std::unique_ptr<MaterialXConverter> _converters[4];
};

TEST_F(Determinism, TheLocaleChangesNoByte)
{
    const std::string plain = everything();
    const std::locale former =
        std::locale::global(std::locale(std::locale::classic(), new CommaPunctuation));
    EXPECT_EQ(everything(), plain) << "with that of streams";
    std::locale::global(former);

    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "de_DE", "German"})
        if (std::setlocale(LC_ALL, name) && hasCommas())
            break;
    const bool before = hasCommas();
    const std::string localised = everything();
    const bool after = hasCommas();
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(localised, plain) << "with that of the C library";
    EXPECT_EQ(after, before) << "the host's locale is the host's";
    if (!before)
        GTEST_SKIP() << "no locale with decimal commas is installed";
}

TEST_F(Determinism, ThreadsWithTheirOwnConvertersGiveTheSameBytes)
{
    const std::string expected = texts(*_converters[0]);
    std::string results[4];
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < std::size(results); ++i)
        threads.emplace_back([&, i] { results[i] = texts(*_converters[i]); });
    for (std::thread& thread : threads)
        thread.join();
    for (const std::string& result : results)
        EXPECT_TRUE(result == expected);
}

} // namespace

} // namespace vyr::hosttests
