#include <array>
#include <cmath>
#include <set>
#include <string>
#include <vector>

#include "host/HostTest.h"
#include "materials/Evaluator.h"

namespace vyr::materialtests
{

namespace
{

using namespace hosttests;
using Lines = std::vector<std::string>;
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

/// At a source of exactly 0.5 both branches meet in value, so the branch itself is looked at.
TEST_F(Hardwood, TakesTheUpperBranchAtHalf)
{
    const Translation translation = translate(makeWood({.color = {0.8, 0.1, 0.4}}));
    const mx::NodeGraphPtr graph = translation.document->getNodeGraph("hardWoodTint_nodegraph");
    ASSERT_NE(graph, nullptr);
    const Evaluator evaluate({0.7, 0.7, 0.7});
    for (const char* channel : {"r", "g", "b"})
    {
        const auto chosen = graph->getNode(std::string("ifgreater_than_factor") + channel);
        ASSERT_NE(chosen, nullptr);
        EXPECT_EQ(chosen->getCategory(), "ifgreatereq") << "equal counts as greater";
        EXPECT_EQ(chosen->getInputValue("value2")->asA<float>(), 0.5f);
        const Value source = evaluate(chosen->getInput("value1"));
        EXPECT_EQ(source, Value{0.7});
        EXPECT_EQ(chosen->getConnectedNode("in1"),
                  graph->getNode(std::string("over_result") + channel));
        EXPECT_EQ(chosen->getConnectedNode("in2"),
                  graph->getNode(std::string("under_result") + channel));
    }
}

/// A grey tint of one half leaves the overlay at the source, and the whole even over all tones.
TEST_F(Hardwood, NeutralTintIsEven)
{
    const Translation translation = translate(makeWood({}));
    const mx::NodeGraphPtr graph = translation.document->getNodeGraph("hardWoodTint_nodegraph");
    for (const double source : sources)
    {
        const Evaluator evaluate({source, source, source});
        EXPECT_NEAR(evaluate(graph->getNode("combine_color3"))[0], source, 1e-12);
        EXPECT_NEAR(evaluate(baseColor(translation.document))[0], 0.75 * source, 1e-12);
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
        EXPECT_TRUE(names.insert(node->getName()).second) << node->getName();
    std::set<std::string> expected{"valueTwo",    "valueOne",          "combine_color3",
                                   "src_mix_res", "tint_res_multiply", "second_mix"};
    for (const char* channel : {"r", "g", "b"})
        for (const char* base :
             {"extract_src", "extract_tint", "source_multiply_tint", "under_result",
              "one_minus_src", "one_minus_tint", "minSrc_mul_minTint", "double_minSrc_mul_minTint",
              "over_result", "ifgreater_than_factor"})
            expected.insert(std::string(base) + channel);
    EXPECT_EQ(names, expected);

    const mx::InputPtr source = graph->getInput("generic_diffuse");
    ASSERT_NE(source, nullptr);
    EXPECT_EQ(source->getNodeGraphString(), "M_nodegraph");
    EXPECT_EQ(
        source->getConnectedOutput(),
        translation.document->getNodeGraph("M_nodegraph")->getOutput(source->getOutputString()));
    EXPECT_EQ(graph->getOutput("tint_color_result")->getType(), "color3");
    EXPECT_EQ(baseColor(translation.document)->getOutputString(), "tint_color_result");
    EXPECT_EQ(inputOf(translation.document, "M_shader", "specular_roughness")->getNodeGraphString(),
              "M_nodegraph")
        << "only the base colour is tinted";
}

struct ModeCase
{
    std::int32_t mode;
    const char* declared;
    /// Power of the written value over the asset's.
    double power;
    const char* colorSpace;
};

const ModeCase modeCases[] = {
    {0, nullptr, 1.0, "lin_rec709"},
    {1, nullptr, 2.2, "lin_rec709"},
    {2, nullptr, 2.4, "lin_rec709"},
    {3, nullptr, 1.0, "g22_rec709"},
    {4, nullptr, 1.0, "rec709_display"},
    {1, "colorspace_linear", 1.0, "lin_rec709"},
    {2, "colorspace_linear", 1.0, "lin_rec709"},
    {3, "colorspace_linear", 1.0 / 2.2, "g22_rec709"},
    {0, "colorspace_sRGB_gamma24", 2.4, "lin_rec709"},
    {1, "colorspace_sRGB_gamma24", 2.4, "lin_rec709"},
    {4, "colorspace_sRGB_gamma24", 1.0, "rec709_display"},
};

TEST_F(Hardwood, TintFollowsTheColorMode)
{
    for (const ModeCase& one : modeCases)
    {
        ConverterOptions options = plainOptions();
        options.colorMode = one.mode;
        const Color color{0.25, 0.5, 0.75};
        const Translation translation =
            translate(makeWood({.color = color, .declared = one.declared}), options);
        const mx::InputPtr tint =
            translation.document->getNodeGraph("hardWoodTint_nodegraph")->getInput("tint_color");
        ASSERT_NE(tint, nullptr);
        EXPECT_EQ(tint->getColorSpace(), one.colorSpace) << one.mode;
        const auto written = tint->getValue()->asA<mx::Color3>();
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_NEAR(written[i], std::pow(color.at(i), one.power), 2e-6) << one.mode;
        EXPECT_TRUE(isSound(translation.document));
    }
}

struct UntintedCase
{
    const char* what;
    Wood wood;
    bool told = false;
};

const UntintedCase untintedCases[] = {
    {"switched off", {.enabled = "hardwood_no_choice"}},
    {"another case", {.enabled = "Hardwood_Color_Choice"}},
    {"nothing said", {.enabled = nullptr}},
    {"no colour", {.tint = false}},
    {"another schema", {.schema = "CeramicSchema"}},
    {"without image", {.image = false}, true},
};

TEST_F(Hardwood, WithoutATintIsAsAnyOther)
{
    for (const UntintedCase& one : untintedCases)
    {
        SCOPED_TRACE(one.what);
        const Translation translation = translate(makeWood(one.wood));
        ASSERT_TRUE(translation.succeeded) << translation.report();
        EXPECT_EQ(translation.document->getNodeGraph("hardWoodTint_nodegraph"), nullptr);
        EXPECT_EQ(translation.count(DiagnosticCode::TintIgnored), one.told ? 1u : 0u);
        const mx::InputPtr input = baseColor(translation.document);
        if (one.wood.image)
            EXPECT_EQ(input->getNodeGraphString() + "/" + input->getOutputString(),
                      "M_nodegraph/generic_diffuse_output");
        else
            EXPECT_EQ(input->getValueString(), "0.25, 0.5, 0.75");
        EXPECT_TRUE(isSound(translation.document));
    }
}

/// A tint that cannot be read fails, whether or not there is something to tint.
TEST_F(Hardwood, ATintThatIsNoColorFails)
{
    for (const bool image : {false, true})
    {
        AssetBuilder builder("HardwoodSchema");
        builder.choice("hardwood_tint_enabled", "hardwood_color_choice")
            .scalar("hardwood_tint_color", 0.5)
            .generic()
            .color("generic_diffuse", 0.25, 0.5, 0.75);
        if (image)
            builder.connect("generic_diffuse", bitmapAsset("wood.png"));
        const Translation translation = translate(builder.build());
        EXPECT_FALSE(translation.succeeded);
        EXPECT_EQ(translation.first(DiagnosticCode::PropertyType).property, "hardwood_tint_color");
        EXPECT_TRUE(*translation.document == *mx::createDocument());
    }
}

} // namespace

} // namespace vyr::materialtests
