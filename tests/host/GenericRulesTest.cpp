#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <variant>
#include <vector>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

constexpr const char* diffuse = "generic_diffuse";
constexpr const char* reflectivity = "generic_reflectivity_at_0deg";
constexpr const char* isMetal = "generic_is_metal";
constexpr const char* glossiness = "generic_glossiness";
constexpr const char* transparency = "generic_transparency";
constexpr const char* translucency = "generic_refraction_translucency_weight";
constexpr const char* refraction = "generic_refraction_index";
constexpr const char* luminance = "generic_self_illum_luminance";
constexpr const char* filter = "generic_self_illum_filter_map";

/// A texture is an image of that name.
using Value = std::variant<bool, double, Rgba, const char*>;

/// Properties in, expected inputs out.
struct RuleCase
{
    std::vector<std::pair<const char*, Value>> given;
    std::vector<ExpectedInput> expected;
};

void add(AssetBuilder& builder, const char* name, const Value& value)
{
    if (const auto* image = std::get_if<const char*>(&value))
        builder.connect(name, bitmapAsset(*image));
    else if (const auto* c = std::get_if<Rgba>(&value))
        builder.color(name, (*c)[0], (*c)[1], (*c)[2], (*c)[3]);
    else if (const auto* number = std::get_if<double>(&value))
        builder.scalar(name, *number);
    else
        builder.boolean(name, std::get<bool>(value));
}

class GenericRules : public HostTest
{
  protected:
    void check(const std::vector<RuleCase>& cases) const
    {
        for (const RuleCase& one : cases)
        {
            AssetBuilder builder;
            for (const auto& [property, value] : one.given)
                add(builder, property, value);
            const Translation translation = translate(builder.build());
            SCOPED_TRACE("case " + std::to_string(&one - cases.data()));
            EXPECT_TRUE(translation.succeeded) << translation.report();
            EXPECT_TRUE(hasInputs(translation.document, "M_shader", one.expected));
            EXPECT_TRUE(isSound(translation.document));
        }
    }

    /// Roughness as written, after both kinds were found equal.
    double roughness(double value, int mode) const
    {
        const Translation translation = translate(AssetBuilder().scalar(glossiness, value).build(),
                                                  with(&ConverterOptions::roughnessMode, mode));
        const auto written = [&](const char* name)
        { return inputOf(translation.document, "M_shader", name)->getValueString(); };
        EXPECT_EQ(written("specular_roughness"), written("diffuse_roughness"));
        return std::stod(written("specular_roughness"));
    }
};

TEST_F(GenericRules, Diffuse)
{
    const Rgba red = {1, 0, 0, 1};
    check({
        {{{diffuse, Rgba{0.1, 0.2, 0.3, 0.4}}},
         {{"base_color", "0.1, 0.2, 0.3"}, {"base", "1"}, {"opacity", "1, 1, 1"}}},
        {{{"color_by_object", false}}, {{"base_color", "0, 0, 0"}}},
        {{{"color_by_object", true}, {diffuse, red}}, {{"base_color", "0.5, 0.5, 0.5"}}},
        {{{"color_by_object", true}}, {{"base_color", "0.5, 0.5, 0.5"}}},
        {{{"color_by_object", false}, {diffuse, red}}, {{"base_color", "1, 0, 0"}}},
        {{{diffuse, red}, {"generic_diffuse_image_fade", 0.5}}, {{"base_color", "1, 0, 0"}}},
    });
}

TEST_F(GenericRules, Reflectivity)
{
    const struct
    {
        bool metal;
        double reflectivity;
        const char* metalness;
        const char* specular;
        const char* roughness;
    } cases[] = {
        {false, 0, "0", "0", "0.2"},         {false, -0.0, "0", "0", "0.2"},
        {false, 0.0001, "0", "1", "0.25"},   {false, -0.5, "0", "1", "0.25"},
        {false, 0.7, "0", "1", "0.25"},      {true, 0, "0", "0", "0.2"},
        {true, 0.0001, "0", "1", "0.25"},    {true, 0.15, "0", "1", "0.25"},
        {true, 0.1555, "0.01", "1", "0.25"}, {true, 0.425, "0.5", "1", "0.25"},
        {true, 0.6945, "0.99", "1", "0.25"}, {true, 0.7, "1", "1", "0.15"},
        {true, 1.5, "1", "1", "0.15"},       {true, -1, "0", "1", "0.25"},
    };
    for (const auto& one : cases)
        check({{{{reflectivity, one.reflectivity}, {isMetal, one.metal}},
                {{"metalness", one.metalness},
                 {"specular", one.specular},
                 {"specular_roughness", one.roughness},
                 {"diffuse_roughness", "0"}}}});
    check({
        {{{reflectivity, 0.9}}, {{"metalness", "0"}, {"specular_roughness", "0.25"}}},
        {{{isMetal, true}}, {{"metalness", "0"}, {"specular", "1"}, {"specular_roughness", "0.2"}}},
        {{{reflectivity, 0.9}, {isMetal, true}, {glossiness, 0.3}},
         {{"metalness", "1"}, {"specular_roughness", "0.7"}, {"diffuse_roughness", "0.7"}}},
        {{{glossiness, 0.3}, {reflectivity, 0.9}, {isMetal, true}},
         {{"metalness", "1"}, {"specular_roughness", "0.7"}, {"diffuse_roughness", "0.7"}}},
    });
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

std::vector<ExpectedInput> transmission(const char* amount, const char* subsurface,
                                        const char* thinWalled, const char* index)
{
    return {{"transmission", amount},
            {"subsurface", subsurface},
            {"thin_walled", thinWalled},
            {"specular_IOR", index},
            {"transmission_color", "1, 1, 1"}};
}

TEST_F(GenericRules, Transparency)
{
    check({
        {{{translucency, 0.2}, {refraction, 1.33}}, transmission("0", "0", "false", "1.5")},
        {{{transparency, 0.0}, {translucency, 0.2}, {refraction, 1.33}},
         transmission("0", "0", "false", "1.5")},
        {{{transparency, 0.0001}, {translucency, 0.2}, {refraction, 1.33}},
         transmission("0.0001", "0.2", "true", "1.33")},
        {{{transparency, 1.0}, {translucency, 0.2}, {refraction, 1.33}},
         transmission("1", "0.2", "true", "1.33")},
        {{{transparency, 0.5}, {refraction, 1.33}}, transmission("0.5", "0", "false", "1.33")},
        {{{transparency, 0.5}, {translucency, 0.0}}, transmission("0.5", "0", "false", "1.5")},
        {{{transparency, 0.5}, {translucency, 0.0001}},
         transmission("0.5", "0.0001", "true", "1.5")},
        {{{transparency, 0.5}, {"generic_transparency_image_fade", 1.0}},
         transmission("0.5", "0", "false", "1.5")},
    });
}

TEST_F(GenericRules, SelfIllumination)
{
    const Rgba warm = {0.25, 0.5, 0.75, 1};
    const ExpectedInput shown = {"emission_color", "0.25, 0.5, 0.75"};
    const ExpectedInput white = {"emission_color", "1, 1, 1"};
    check({
        {{{luminance, 500.0}, {filter, warm}}, {{"emission", "0.5"}, shown}},
        {{{luminance, 0.0}, {filter, warm}}, {{"emission", "0"}, shown}},
        {{{luminance, -500.0}, {filter, warm}}, {{"emission", "0"}, shown}},
        {{{luminance, 0.001}, {filter, warm}}, {{"emission", "1e-06"}, shown}},
        {{{luminance, 250000.0}, {filter, warm}}, {{"emission", "250"}, shown}},
        {{{luminance, 10.0}}, {{"emission", "0.01"}, white}},
        {{{filter, warm}}, {{"emission", "0"}, white}},
    });
}

TEST_F(GenericRules, PlainCutOutAndBumpChangeNothing)
{
    const Translation plain = translate(AssetBuilder().build());
    const Translation both = translate(AssetBuilder()
                                           .scalar("generic_cutout_opacity", 0.5)
                                           .scalar("generic_bump_amount", 2)
                                           .scalar("generic_bump_map", 1)
                                           .build());
    EXPECT_EQ(xmlOf(both.document), xmlOf(plain.document));
}

/// Each mode decodes the asset's colours or states what they are, and touches nothing else.
TEST_F(GenericRules, ColorModes)
{
    const struct
    {
        int mode;
        /// The power that plain values are decoded with.
        double power;
        const char* colorSpace;
    } modes[] = {
        {0, 1, "lin_rec709"},  {1, 2.2, "lin_rec709"},     {2, 2.4, "lin_rec709"},
        {3, 1, "g22_rec709"},  {4, 1, "rec709_display"},   {5, 1, "lin_rec709"},
        {-1, 1, "lin_rec709"}, {1 << 30, 1, "lin_rec709"},
    };
    const AssetPtr asset = AssetBuilder()
                               .color(diffuse, -0.5, 0.25, 1)
                               .scalar(luminance, 100)
                               .color(filter, 0.75, 0.01, 0.5)
                               .scalar(transparency, 0.5)
                               .build();
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

/// What a texture takes the place of is not read, and what it does not is.
TEST_F(GenericRules, TexturesLeaveTheOtherRulesAlone)
{
    check({
        {{{reflectivity, 0.9}, {reflectivity, "a.png"}, {isMetal, true}},
         {{"metalness", "0"}, {"specular_roughness", "0.2"}}},
        {{{reflectivity, 0.5}, {glossiness, 0.9}, {glossiness, "a.png"}},
         {{"diffuse_roughness", "0"}}},
        {{{transparency, 0.0},
          {transparency, "a.png"},
          {refraction, 1.33},
          {"generic_transparency_image_fade", 0.5}},
         {{"specular_IOR", "1.33"}}},
        {{{transparency, 0.5}, {translucency, 0.0}, {translucency, "a.png"}},
         {{"thin_walled", "true"}, {"subsurface", "0"}}},
        {{{diffuse, Rgba{0.25, 0.5, 0.75, 1}},
          {diffuse, "a.png"},
          {"generic_diffuse_image_fade", 0.0},
          {transparency, 0.125},
          {transparency, "a.png"},
          {"generic_transparency_image_fade", -1.0}},
         {{"base_color", "0.25, 0.5, 0.75"}, {"transmission", "0.125"}}},
        {{{"color_by_object", true}, {"color_by_object", "a.png"}},
         {{"base_color", "0.5, 0.5, 0.5"}}},
    });
}

/// A Generic asset is read through its own table, any other through the one that it carries.
TEST_F(GenericRules, ReadOneTable)
{
    for (const char* schema : {"GenericSchema", "CeramicSchema", "HardwoodSchema",
                               "MetallicPaintSchema", "SolidGlassSchema", "WaterSchema"})
    {
        const Translation translation = translate(AssetBuilder(schema)
                                                      .scalar(glossiness, 0.1)
                                                      .generic()
                                                      .color(diffuse, 0.25, 0.5, 0.75)
                                                      .scalar(glossiness, 0.4)
                                                      .build());
        const bool isGeneric = std::string(schema) == "GenericSchema";
        EXPECT_TRUE(hasInputs(translation.document, "M_shader",
                              {{"diffuse_roughness", isGeneric ? "0.9" : "0.6"}}))
            << schema;
        EXPECT_TRUE(isSound(translation.document)) << schema;
    }
}

} // namespace

} // namespace vyr::hosttests
