#include <array>
#include <cmath>
#include <set>
#include <string>

#include "materials/Evaluator.h"
#include "materials/LyrexFamilies.h"

namespace vyr::materialtests
{

namespace
{

using Color = std::array<double, 3>;

/// The closed form of one channel.
double overlay(double s, double t)
{
    return s >= 0.5 ? 1.0 - 2.0 * (1.0 - s) * (1.0 - t) : 2.0 * s * t;
}

double tinted(double s, double t)
{
    return (s + overlay(s, t)) * (1.0 + t) / 4.0;
}

struct Wood
{
    bool image = true;
    bool tint = true;
    Color color{0.5, 0.5, 0.5};
    const char* enabled = "hardwood_color_choice";
    const char* schema = "HardwoodSchema";
    const char* declared = nullptr;
};

class Hardwood : public HostTest
{
  protected:
    static AssetPtr makeWood(const Wood& wood)
    {
        AssetBuilder builder(wood.schema);
        if (wood.enabled)
            builder.choice("hardwood_tint_enabled", wood.enabled);
        if (wood.tint)
            builder.color("hardwood_tint_color", wood.color[0], wood.color[1], wood.color[2]);
        if (wood.declared)
            builder.choice("hardwood_tint_color_colorspace", wood.declared);
        builder.generic().color("generic_diffuse", 0.25, 0.5, 0.75);
        if (wood.image)
            builder.connect("generic_diffuse", bitmapAsset("wood.png"));
        builder.connect("generic_glossiness", bitmapAsset("gloss.png"));
        return builder.build();
    }

    static mx::InputPtr baseColor(const mx::DocumentPtr& document)
    {
        return inputOf(document, "M_shader", "base_color");
    }
};

const Color tints[] = {{0.5, 0.5, 0.5}, {1.0, 1.0, 1.0},    {0.0, 0.0, 0.0},
                       {0.8, 0.1, 0.4}, {0.68, 0.03, 0.55}, {1.25, 0.999, 0.001}};
const double sources[] = {0.0, 0.001, 0.1, 0.25, 0.4999999, 0.5, 0.75, 0.5000001, 0.9, 1.0, 1.5};

/// From the shader's input through both graphs to the image and back.
TEST_F(Hardwood, YieldsTheClosedForm)
{
    for (const Color& tint : tints)
    {
        const Translation translation = translate(makeWood({.color = tint}));
        ASSERT_TRUE(translation.succeeded) << translation.report();
        EXPECT_TRUE(isSound(translation.document));
        for (std::size_t i = 0; i < std::size(sources); ++i)
        {
            Value source;
            for (std::size_t channel = 0; channel < 3; ++channel)
                source.push_back(sources[(i + 3 * channel) % std::size(sources)]);
            const Value result = Evaluator(source)(baseColor(translation.document));
            ASSERT_EQ(result.size(), 3u);
            for (std::size_t channel = 0; channel < 3; ++channel)
                EXPECT_NEAR(result[channel], tinted(source[channel], tint.at(channel)), 1e-12)
                    << "source " << source[channel] << ", tint " << tint.at(channel);
        }
    }
}

TEST_F(Hardwood, NodesHaveTheirNames)
{
    const Translation translation = translate(makeWood({}));
    EXPECT_EQ(topLevel(translation.document),
              (Lines{"standard_surface M_shader", "surfacematerial M", "nodegraph M_nodegraph",
                     "nodegraph hardWoodTint_nodegraph"}));
    const mx::NodeGraphPtr graph = translation.document->getNodeGraph("hardWoodTint_nodegraph");
    std::set<std::string> names;
    for (const mx::NodePtr& node : graph->getNodes())
        names.insert(node->getName());
    std::set<std::string> expected{"valueTwo",    "valueOne",          "combine_color3",
                                   "src_mix_res", "tint_res_multiply", "second_mix"};
    for (const char* channel : {"r", "g", "b"})
        for (const char* base :
             {"extract_src", "extract_tint", "source_multiply_tint", "under_result",
              "one_minus_src", "one_minus_tint", "minSrc_mul_minTint", "double_minSrc_mul_minTint",
              "over_result", "ifgreater_than_factor"})
            expected.insert(std::string(base) + channel);
    EXPECT_EQ(names, expected);

    EXPECT_EQ(graph->getInput("generic_diffuse")->getNodeGraphString(), "M_nodegraph");
    EXPECT_EQ(graph->getOutput("tint_color_result")->getType(), "color3");
    EXPECT_EQ(inputOf(translation.document, "M_shader", "specular_roughness")->getNodeGraphString(),
              "M_nodegraph")
        << "only the base colour is tinted";
}

TEST_F(Hardwood, TintFollowsTheColorMode)
{
    const struct
    {
        std::int32_t mode;
        const char* declared;
        /// Power of the written value over the asset's.
        double power;
        const char* colorSpace;
    } cases[] = {
        {0, nullptr, 1.0, "lin_rec709"},
        {2, nullptr, 2.4, "lin_rec709"},
        {1, "colorspace_linear", 1.0, "lin_rec709"},
        {3, "colorspace_linear", 1.0 / 2.2, "g22_rec709"},
        {1, "colorspace_sRGB_gamma24", 2.4, "lin_rec709"},
        {4, "colorspace_sRGB_gamma24", 1.0, "rec709_display"},
    };
    for (const auto& [mode, declared, power, colorSpace] : cases)
    {
        const Translation translation =
            translate(makeWood({.declared = declared}), with(&ConverterOptions::colorMode, mode));
        const mx::InputPtr tint =
            translation.document->getNodeGraph("hardWoodTint_nodegraph")->getInput("tint_color");
        EXPECT_EQ(tint->getColorSpace(), colorSpace) << mode;
        EXPECT_NEAR(tint->getValue()->asA<mx::Color3>()[1], std::pow(0.5, power), 2e-6) << mode;
    }
}

TEST_F(Hardwood, WithoutATintIsAsAnyOther)
{
    for (const Wood& wood : {Wood{.enabled = "hardwood_no_choice"},
                             {.enabled = "Hardwood_Color_Choice"},
                             {.enabled = nullptr},
                             {.tint = false},
                             {.schema = "CeramicSchema"},
                             {.image = false}})
    {
        const Translation translation = translate(makeWood(wood));
        ASSERT_TRUE(translation.succeeded) << translation.report();
        EXPECT_EQ(translation.document->getNodeGraph("hardWoodTint_nodegraph"), nullptr);
        EXPECT_EQ(translation.count(DiagnosticCode::TintIgnored), wood.image ? 0u : 1u);
        const mx::InputPtr input = baseColor(translation.document);
        EXPECT_EQ(input->getOutputString(), wood.image ? "generic_diffuse_output" : "");
        EXPECT_EQ(input->getValueString(), wood.image ? "" : "0.25, 0.5, 0.75");
    }
}

TEST_F(Hardwood, ATintThatIsNoColorFails)
{
    AssetBuilder builder("HardwoodSchema");
    builder.choice("hardwood_tint_enabled", "hardwood_color_choice")
        .scalar("hardwood_tint_color", 0.5)
        .generic();
    const Translation translation = translate(builder.build());
    EXPECT_FALSE(translation.succeeded);
    EXPECT_EQ(translation.first(DiagnosticCode::PropertyType).property, "hardwood_tint_color");
}

} // namespace

} // namespace vyr::materialtests
