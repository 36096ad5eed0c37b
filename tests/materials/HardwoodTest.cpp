#include <array>
#include <cmath>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "materials/LyrexAssets.h"

namespace vyr::materialtests
{

namespace
{

/// The channels of a colour, or one number.
using Value = std::vector<double>;

/// Computes what an input gets, through outputs, sibling nodes and inputs of the graph around it, by what
/// MaterialX says of the standard nodes. Images yield a value of the test's choice.
Value evaluate(const mx::InputPtr& input, const Value& image)
{
    if (input && input->hasValueString())
    {
        Value numbers;
        for (const std::string& part : mx::splitString(input->getValueString(), ","))
            numbers.push_back(std::stod(part));
        return numbers;
    }
    if (const mx::InputPtr published = input ? input->getInterfaceInput() : nullptr)
        return evaluate(published, image);
    const mx::NodePtr node = input ? input->getConnectedNode() : nullptr;
    const std::string category = node ? node->getCategory() : "nothing";
    const auto in = [&](const char* name) { return evaluate(node->getInput(name), image); };
    // Channel by channel; a single number stands for all channels.
    const auto combine = [](Value a, const Value& b, const auto& operation)
    {
        for (std::size_t i = 0; i < a.size(); ++i)
            a[i] = operation(a[i], b.size() == 1 ? b[0] : b.at(i));
        return a;
    };
    if (category == "kvor:bitmap")
        return image;
    if (category == "constant")
        return in("value");
    if (category == "extract")
        return {in("in").at(static_cast<std::size_t>(in("index")[0]))};
    if (category == "combine3")
        return {in("in1")[0], in("in2")[0], in("in3")[0]};
    if (category == "multiply")
        return combine(in("in1"), in("in2"), std::multiplies<>());
    if (category == "subtract")
        return combine(in("in1"), in("in2"), std::minus<>());
    if (category == "ifgreatereq")
        return in("value1")[0] >= in("value2")[0] ? in("in1") : in("in2");
    if (category == "mix") // bg - (bg - fg) * mix
        return combine(
            in("bg"),
            combine(combine(in("bg"), in("fg"), std::minus<>()), in("mix"), std::multiplies<>()),
            std::minus<>());
    ADD_FAILURE() << (input ? input->getNamePath() : "a missing input") << " reads " << category;
    return {0.0, 0.0, 0.0};
}

/// The closed form of one channel.
double tinted(double s, double t)
{
    const double overlay = s >= 0.5 ? 1.0 - 2.0 * (1.0 - s) * (1.0 - t) : 2.0 * s * t;
    return (s + overlay) * (1.0 + t) / 4.0;
}

struct Wood
{
    bool image = true;
    bool tint = true;
    std::array<double, 3> color{0.5, 0.5, 0.5};
    const char* enabled = "hardwood_color_choice";
    const char* schema = "HardwoodSchema";
    const char* declared = nullptr;
};

AssetPtr makeWood(const Wood& wood)
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

using Hardwood = HostTest;

/// From the shader's input through both graphs to the image and back.
TEST_F(Hardwood, YieldsTheClosedForm)
{
    const std::array<double, 3> tints[] = {{0.5, 0.5, 0.5},    {1.0, 1.0, 1.0},
                                           {0.0, 0.0, 0.0},    {0.8, 0.1, 0.4},
                                           {0.68, 0.03, 0.55}, {1.25, 0.999, 0.001}};
    const double sources[] = {0.0,  0.001,     0.1, 0.25, 0.4999999, 0.5,
                              0.75, 0.5000001, 0.9, 1.0,  1.5};
    for (const auto& tint : tints)
    {
        const Translation translation = translate(makeWood({.color = tint}));
        ASSERT_TRUE(translation.succeeded) << translation.report();
        EXPECT_TRUE(isSound(translation.document));
        for (std::size_t i = 0; i < std::size(sources); ++i)
        {
            Value source;
            for (std::size_t channel = 0; channel < 3; ++channel)
                source.push_back(sources[(i + 3 * channel) % std::size(sources)]);
            const Value result =
                evaluate(inputOf(translation.document, "M_shader", "base_color"), source);
            ASSERT_EQ(result.size(), 3u);
            for (std::size_t channel = 0; channel < 3; ++channel)
                EXPECT_NEAR(result[channel], tinted(source[channel], tint.at(channel)), 1e-12)
                    << "source " << source[channel] << ", tint " << tint.at(channel);
        }
    }
}

/// Stained woods, each with its own stain, even when a material's own graph is called as tints are.
TEST_F(Hardwood, SharesADocument)
{
    const mx::DocumentPtr document = mx::createDocument();
    const std::pair<std::string, double> woods[] = {
        {"hardWoodTint", 1.0}, {"Dark", 0.75}, {"Light", 0.25}};
    ConverterOptions options = plainOptions();
    MaterialXConverter converter(options);
    for (const auto& [name, tint] : woods)
        ASSERT_TRUE(converter.TranslateToMaterialX(*makeWood({.color = {tint, tint, tint}}),
                                                   UTF8String(name), document));
    for (const auto& [name, tint] : woods)
        EXPECT_NEAR(
            evaluate(inputOf(document, name + "_shader", "base_color"), {0.25, 0.25, 0.25})[0],
            tinted(0.25, tint), 1e-12);
    EXPECT_EQ(document->getNodeGraphs().size(), 6u);
    EXPECT_TRUE(isSound(document));
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
        const mx::InputPtr input = inputOf(translation.document, "M_shader", "base_color");
        EXPECT_EQ(input->getOutputString(), wood.image ? "generic_diffuse_output" : "");
        EXPECT_EQ(input->getValueString(), wood.image ? "" : "0.25, 0.5, 0.75");
    }
    AssetBuilder builder("HardwoodSchema");
    builder.choice("hardwood_tint_enabled", "hardwood_color_choice");
    const Translation failed =
        translate(builder.scalar("hardwood_tint_color", 0.5).generic().build());
    EXPECT_FALSE(failed.succeeded) << "a tint that is no colour";
    EXPECT_EQ(failed.first(DiagnosticCode::PropertyType).property, "hardwood_tint_color");
}

} // namespace

} // namespace vyr::materialtests
