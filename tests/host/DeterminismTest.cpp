#include <array>
#include <clocale>
#include <locale>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <MaterialXCore/Value.h>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

/// Decimal commas, dots between thousands and words for Booleans that are not MaterialX's.
class CommaPunctuation : public std::numpunct<char>
{
  protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
    std::string do_truename() const override { return "wahr"; }
    std::string do_falsename() const override { return "falsch"; }
};

/// Sets the C++ locale of the process while it lives.
class GlobalLocale
{
  public:
    explicit GlobalLocale(const std::locale& locale) : _former(std::locale::global(locale)) {}
    ~GlobalLocale() { std::locale::global(_former); }
    GlobalLocale(const GlobalLocale&) = delete;
    GlobalLocale& operator=(const GlobalLocale&) = delete;

  private:
    std::locale _former;
};

/// Sets a C locale with decimal commas while it lives, when the system has one.
class CommaLocale
{
  public:
    CommaLocale()
    {
        for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "de_DE", "German"})
            if (std::setlocale(LC_ALL, name) && *std::localeconv()->decimal_point == ',')
                return;
        std::setlocale(LC_ALL, "C");
    }
    ~CommaLocale() { std::setlocale(LC_ALL, "C"); }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

    static bool isSet() { return *std::localeconv()->decimal_point == ','; }
};

/// A material whose numbers differ with `seed`.
AssetPtr material(int seed)
{
    return AssetBuilder()
        .id("asset " + std::to_string(seed))
        .name("Material " + std::to_string(seed))
        .color("generic_diffuse", seed / 100.0, 0.123456789, 0.5)
        .scalar("generic_glossiness", seed / 97.0)
        .scalar("generic_transparency", 0.25)
        .scalar("generic_refraction_index", 1234.5 + seed)
        .scalar("generic_refraction_translucency_weight", 0.5)
        .scalar("generic_self_illum_luminance", 123456789.0 / (seed + 1))
        .build();
}

class Determinism : public HostTest
{
  protected:
    std::string text(int seed) const
    {
        ConverterOptions options = plainOptions();
        options.colorMode = 2;
        options.roughnessMode = 1;
        MaterialXConverter converter(options);
        const AssetPtr asset = material(seed);
        const auto document = mx::createDocument();
        EXPECT_TRUE(
            converter.TranslateToMaterialX(*asset, converter.getMaterialName(*asset), document));
        return xmlOf(document);
    }

    /// What registration and serialisation deliver.
    std::string serialised(int seed) const
    {
        ConverterOptions options = plainOptions();
        MaterialXConverter converter(options);
        StringSink message;
        const AssetPtr asset = material(seed);
        EXPECT_TRUE(converter.RegisterAssetForConversion(*asset, message));
        EXPECT_TRUE(converter.SerializeRegisteredAssetsForConversion(message, nullptr));
        return message.text;
    }
};

TEST_F(Determinism, TheSameAssetGivesTheSameBytes)
{
    EXPECT_EQ(text(7), text(7));
    EXPECT_NE(text(7), text(8));
}

TEST_F(Determinism, TheLocaleOfStreamsChangesNoByte)
{
    const std::string plain = text(7) + serialised(1234567);
    const GlobalLocale locale(std::locale(std::locale::classic(), new CommaPunctuation));
    EXPECT_EQ(text(7) + serialised(1234567), plain);
}

TEST_F(Determinism, TheLocaleOfTheCLibraryChangesNoByte)
{
    const std::string plain = text(7) + serialised(1234567);
    const CommaLocale locale;
    if (!CommaLocale::isSet())
        GTEST_SKIP() << "no locale with decimal commas is installed";
    EXPECT_EQ(text(7) + serialised(1234567), plain);
    EXPECT_TRUE(CommaLocale::isSet()) << "the host's locale is the host's";
}

/// Numbers are spelt as MaterialX spells them, so that a document is the same when it was read and
/// written again.
TEST_F(Determinism, NumbersAreSpeltAsMaterialXDoes)
{
    const float numbers[] = {1e-45f,       1.17549e-38f, 1e-10f,     9.99999e-5f, 1e-4f,
                             0.1f,         0.3f,         1.0f / 3,   0.9999995f,  1.5f,
                             123456.0f,    999999.5f,    1234567.0f, 1e6f,        1e7f,
                             1.6777216e7f, 3.4e38f,      2.5f};
    const auto spelt = [this](float number)
    {
        const Translation translation = translate(AssetBuilder()
                                                      .scalar("generic_transparency", 0.5)
                                                      .scalar("generic_refraction_index", number)
                                                      .color("generic_diffuse", number, 0, number)
                                                      .build());
        EXPECT_TRUE(translation.succeeded);
        const auto written = [&](const char* input)
        { return inputOf(translation.document, "M_shader", input)->getValueString(); };
        EXPECT_EQ(written("base_color"), mx::toValueString(mx::Color3(number, 0, number)));
        return written("specular_IOR");
    };
    for (const float number : numbers)
        EXPECT_EQ(spelt(number), mx::toValueString(number));

    const mx::ScopedFloatFormatting fixed(mx::Value::FloatFormatFixed, 3);
    EXPECT_EQ(spelt(1.0f / 3), mx::toValueString(1.0f / 3)) << "as the host has set it";
}

TEST_F(Determinism, ThreadsWithTheirOwnConvertersGiveTheSameBytes)
{
    constexpr int materials = 40;
    const AssetPtr shared = bitmapAsset("wood.png");
    std::vector<AssetPtr> assets;
    for (int seed = 0; seed < materials; ++seed)
        assets.push_back(AssetBuilder()
                             .id(std::to_string(seed))
                             .color("generic_diffuse", seed / 100.0, 0, 0)
                             .scalar("generic_glossiness", seed / 97.0)
                             .scalar("unread", 1)
                             .connect("generic_diffuse", shared)
                             .build());

    const auto translateAll = [&](MaterialXConverter& converter, std::string& result)
    {
        for (const AssetPtr& asset : assets)
        {
            const auto document = mx::createDocument();
            result +=
                converter.TranslateToMaterialX(*asset, converter.getMaterialName(*asset), document)
                    ? xmlOf(document)
                    : "failed";
            result += std::to_string(lastDiagnostics().size());
        }
    };

    ConverterOptions options = plainOptions();
    std::array<std::unique_ptr<MaterialXConverter>, 4> converters;
    for (auto& converter : converters)
        converter = std::make_unique<MaterialXConverter>(options);
    std::string expected;
    translateAll(*converters[0], expected);
    EXPECT_EQ(expected.find("failed"), std::string::npos);

    std::array<std::string, 4> results;
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < results.size(); ++i)
        threads.emplace_back([&, i] { translateAll(*converters[i], results[i]); });
    for (std::thread& thread : threads)
        thread.join();
    for (const std::string& result : results)
        EXPECT_TRUE(result == expected);
}

} // namespace

} // namespace vyr::hosttests
