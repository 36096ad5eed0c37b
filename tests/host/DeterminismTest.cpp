#include <array>
#include <bit>
#include <clocale>
#include <locale>
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
    void SetUp() override
    {
        for (int seed = 0; seed < 40; ++seed)
        {
            const std::string n = std::to_string(seed);
            _assets.push_back(material(
                R"("name": "Material )" + n + R"(", "properties": {"unread": 1,
                "generic_diffuse": [0.)" +
                n + R"(, 0.123456789, 0.5], "generic_glossiness": 0.0)" + n +
                R"(, "generic_transparency": 0.25, "generic_refraction_index": 1234.)" + n +
                R"(, "generic_refraction_translucency_weight": 0.5, "generic_self_illum_luminance": 1)" +
                n + "123456.789, " + textured("generic_cutout_opacity", "wood.png") + "}"));
        }
    }
    void TearDown() override
    {
        _assets.clear();
        HostTest::TearDown();
    }

    /// All documents, with what was said about them.
    std::string texts() const
    {
        ConverterOptions options = with(&ConverterOptions::roughnessMode, 1);
        MaterialXConverter converter(options);
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

    std::vector<AssetPtr> _assets;
};

TEST_F(Determinism, TheLocaleChangesNoByte)
{
    const std::string plain = texts();
    const std::locale former =
        std::locale::global(std::locale(std::locale::classic(), new CommaPunctuation));
    EXPECT_EQ(texts(), plain) << "with that of streams";
    std::locale::global(former);

    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "de_DE", "German"})
        if (std::setlocale(LC_ALL, name) && hasCommas())
            break;
    const bool before = hasCommas();
    const std::string localised = texts();
    const bool after = hasCommas();
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(localised, plain) << "with that of the C library";
    EXPECT_EQ(after, before) << "the host's locale is the host's";
    if (!before)
        GTEST_SKIP() << "no locale with decimal commas is installed";
}

/// The same assets are read by all threads at once.
TEST_F(Determinism, ThreadsWithTheirOwnConvertersGiveTheSameBytes)
{
    const std::string expected = texts();
    std::array<std::string, 4> results;
    std::vector<std::thread> threads;
    for (std::string& result : results)
        threads.emplace_back([&] { result = texts(); });
    for (std::thread& thread : threads)
        thread.join();
    for (const std::string& result : results)
        EXPECT_TRUE(result == expected);
}

/// Numbers have MaterialX's own bytes, in whatever format the host has asked MaterialX for: at places where
/// writers differ (where the form changes, where digits carry over, the ends), then all over the exponents.
TEST_F(Determinism, NumbersAreWrittenAsTheHostAsked)
{
    // clang-format off
    std::vector<float> hard = {
        0.0f, -0.0f, 0.1f, 0.333333343f, 9.999995e-5f, 0.0001f, 0.9999995f, 99999.95f, 999999.4f, 999999.5f,
        1e6f, 123456789.0f, 1.17549435e-38f, 1e-45f, 3.40282347e38f};
    // clang-format on
    std::uint32_t bits = 1;
    while (hard.size() < 60)
    {
        bits = bits * 1664525u + 1013904223u;
        if (const float number = std::bit_cast<float>(bits); number - number == 0.0f)
            hard.push_back(number);
    }
    const auto expectSameBytes = [&]
    {
        for (const float number : hard)
        {
            const AssetPtr asset =
                generic(R"("generic_diffuse": [0, 0, 0], "generic_transparency": 1,
                           "generic_refraction_index": 1)",
                        {.lies = {{"generic_diffuse", {.number = number}},
                                  {"generic_refraction_index", {.number = number}}}});
            const mx::DocumentPtr document = translate(asset).document;
            EXPECT_EQ(inputOf(document, "M_shader", "specular_IOR")->getValueString(),
                      mx::toValueString(number));
            EXPECT_EQ(inputOf(document, "M_shader", "base_color")->getValueString(),
                      mx::toValueString(mx::Color3(number)));
        }
    };
    expectSameBytes();
    using Formats = mx::Value;
    for (const auto format :
         {Formats::FloatFormatDefault, Formats::FloatFormatFixed, Formats::FloatFormatScientific})
        for (const int precision : {0, 5, 7, 9, 40})
        {
            SCOPED_TRACE(std::to_string(format) + " " + std::to_string(precision));
            const mx::ScopedFloatFormatting formatting(format, precision);
            expectSameBytes();
        }
}

} // namespace

} // namespace vyr::hosttests
