#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <sstream>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

/// The parts of a text between separators.
std::vector<std::string> split(std::string text, const std::string& separator)
{
    std::vector<std::string> parts;
    for (std::size_t end; (end = text.find(separator)) != std::string::npos;)
    {
        parts.push_back(text.substr(0, end));
        text.erase(0, end + separator.size());
    }
    parts.push_back(text);
    return parts;
}

/// Adds what "name value" says, as generic_rules.txt explains.
void add(AssetBuilder& builder, const std::string& given)
{
    const std::string name = given.substr(0, given.find(' '));
    const std::string value = given.substr(name.size() + 1);
    std::istringstream stream(value);
    const std::vector<double> numbers(std::istream_iterator<double>(stream), {});
    if (numbers.size() == 4)
        builder.color(name, numbers[0], numbers[1], numbers[2], numbers[3]);
    else if (numbers.size() == 1)
        builder.scalar(name, numbers[0]);
    else if (value == "true" || value == "false")
        builder.boolean(name, value == "true");
    else
        builder.connect(name, bitmapAsset(value));
}

class GenericRules : public HostTest
{
  protected:
    /// Roughness as written, after both kinds were found equal.
    double roughness(double value, int mode) const
    {
        const Translation translation =
            translate(AssetBuilder().scalar("generic_glossiness", value).build(),
                      with(&ConverterOptions::roughnessMode, mode));
        const auto written = [&](const char* name)
        { return inputOf(translation.document, "M_shader", name)->getValueString(); };
        EXPECT_EQ(written("specular_roughness"), written("diffuse_roughness"));
        return std::stod(written("specular_roughness"));
    }
};

TEST_F(GenericRules, HoldAtTheirBoundaries)
{
    std::ifstream table(std::string(VYR_SOURCE_DIR) + "/tests/host/generic_rules.txt");
    std::size_t rows = 0;
    for (std::string line; std::getline(table, line);)
    {
        const std::vector<std::string> sides = split(line, " -> ");
        if (line.starts_with('#') || sides.size() != 2)
            continue;
        SCOPED_TRACE(line);
        AssetBuilder builder;
        for (const std::string& given : split(sides[0], " | "))
            add(builder, given);
        std::vector<ExpectedInput> expected;
        for (const std::string& input : split(sides[1], " | "))
            expected.push_back(
                {input.substr(0, input.find(' ')), input.substr(input.find(' ') + 1)});
        const Translation translation = translate(builder.build());
        EXPECT_TRUE(translation.succeeded) << translation.report();
        EXPECT_TRUE(hasInputs(translation.document, "M_shader", expected));
        EXPECT_TRUE(isSound(translation.document));
        ++rows;
    }
    EXPECT_GT(rows, 40u);
}

TEST_F(GenericRules, GlossinessFollowsTheCurveWithoutAJump)
{
    // Roughness of mode 1 at 1 - glossiness = 0, 0.05, ..., 1.
    const double curve[] = {0.0,    0.0125, 0.025, 0.0375, 0.05,   0.065, 0.08,
                            0.0975, 0.115,  0.134, 0.155,  0.1775, 0.2,   0.23,
                            0.26,   0.3,    0.35,  0.41,   0.5,    0.66,  1.0};
    for (int step = 0; step <= 1000; ++step)
    {
        const int i = std::min((1000 - step) / 50, 19);
        const double f = (1000 - step) / 50.0 - i;
        EXPECT_NEAR(roughness(step / 1000.0, 1), curve[i] + f * (curve[i + 1] - curve[i]), 5e-6)
            << step;
        EXPECT_NEAR(roughness(step / 1000.0, 2), 1 - step / 1000.0, 2e-6) << step;
    }
    for (const int mode : {0, 3, -2, 1 << 30})
        EXPECT_NEAR(roughness(0.5, mode), 0.155, 1e-6) << mode;
    // Just above 0 the curve is at its end, just below 1 at its start.
    const double tiny = std::numeric_limits<double>::denorm_min();
    for (const int mode : {1, 2})
    {
        for (const double low : {-1e30, -1.0, -0.0, 0.0, tiny, 1e-30, 1e-9, 5e-8, 1e-7})
            EXPECT_NEAR(roughness(low, mode), 1, 1e-5) << low << " in mode " << mode;
        for (const double high : {1 - 1e-9, 1.0, 1.0000001, 2.0, 1e30})
            EXPECT_NEAR(roughness(high, mode), 0, 1e-6) << high << " in mode " << mode;
    }
}

TEST_F(GenericRules, PlainCutOutAndBumpChangeNothing)
{
    const Translation plain = translate(AssetBuilder().build());
    AssetBuilder builder;
    builder.scalar("generic_cutout_opacity", 0.5).scalar("generic_bump_amount", 2);
    const Translation both = translate(builder.scalar("generic_bump_map", 1).build());
    EXPECT_EQ(xmlOf(both.document), xmlOf(plain.document));
}

/// Each mode decodes the asset's colours or states what they are, and touches nothing else.
TEST_F(GenericRules, ColorModes)
{
    // The power that plain values are decoded with, and what the document says that they are.
    const std::tuple<int, double, const char*> modes[] = {
        {0, 1, "lin_rec709"},  {1, 2.2, "lin_rec709"},     {2, 2.4, "lin_rec709"},
        {3, 1, "g22_rec709"},  {4, 1, "rec709_display"},   {5, 1, "lin_rec709"},
        {-1, 1, "lin_rec709"}, {1 << 30, 1, "lin_rec709"},
    };
    AssetBuilder builder;
    builder.color("generic_diffuse", -0.5, 0.25, 1).scalar("generic_self_illum_luminance", 100);
    builder.color("generic_self_illum_filter_map", 0.75, 0.01, 0.5);
    const AssetPtr asset = builder.scalar("generic_transparency", 0.5).build();
    for (const auto& [mode, power, colorSpace] : modes)
    {
        SCOPED_TRACE(mode);
        const auto decoded = [exponent = power](mx::Color3 color)
        {
            for (std::size_t channel = 0; channel < 3; ++channel)
                if (color[channel] > 0) // no power is defined for what is below
                    color[channel] = static_cast<float>(std::pow(color[channel], exponent));
            return mx::toValueString(color);
        };
        const Translation translation = translate(asset, with(&ConverterOptions::colorMode, mode));
        ASSERT_TRUE(translation.succeeded) << translation.report();
        for (const char* input : {"base_color", "emission_color", "transmission_color"})
            EXPECT_EQ(inputOf(translation.document, "M_shader", input)->getColorSpace(),
                      colorSpace);
        EXPECT_TRUE(hasInputs(translation.document, "M_shader",
                              {{"base_color", decoded({-0.5f, 0.25f, 1})},
                               {"emission_color", decoded({0.75f, 0.01f, 0.5f})},
                               {"transmission_color", "1, 1, 1"},
                               {"transmission", "0.5"},
                               {"emission", "0.1"}}));
        EXPECT_EQ(translation.document->getColorSpace(), "lin_rec709");
        EXPECT_TRUE(isSound(translation.document));
    }
}

/// A Generic asset is read through its own table, any other through the one that it carries.
TEST_F(GenericRules, ReadOneTable)
{
    for (const char* schema : {"GenericSchema", "CeramicSchema", "HardwoodSchema",
                               "MetallicPaintSchema", "SolidGlassSchema", "WaterSchema"})
    {
        AssetBuilder builder(schema);
        builder.scalar("generic_glossiness", 0.1).generic().scalar("generic_glossiness", 0.4);
        const Translation translation = translate(builder.build());
        const bool isGeneric = std::string(schema) == "GenericSchema";
        EXPECT_TRUE(hasInputs(translation.document, "M_shader",
                              {{"diffuse_roughness", isGeneric ? "0.9" : "0.6"}}))
            << schema;
        EXPECT_TRUE(isSound(translation.document)) << schema;
    }
}

} // namespace

} // namespace vyr::hosttests
