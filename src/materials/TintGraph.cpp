#include "materials/StandardSurface.h"

#include "graph/Nodes.h"
#include "graph/Values.h"

namespace vyr::MaterialTranslation::materials
{

namespace mx = MaterialX;

namespace
{

constexpr float half = 0.5f;

/// What the channels share.
struct TintNetwork
{
    mx::NodeGraphPtr graph;
    mx::InputPtr source;
    mx::InputPtr tint;
    mx::NodePtr two;
    mx::NodePtr one;
};

/// The overlay blend of one channel.
/// @param suffix "r", "g" or "b", which ends the names of the channel's nodes.
mx::NodePtr addOverlayChannel(const TintNetwork& network, const std::string& suffix, int index)
{
    const auto& [graph, source, tint, two, one] = network;
    const auto binary = [&, &g = graph](const char* category, const char* name,
                                        const mx::NodePtr& first, const mx::NodePtr& second)
    { return graph::addBinary(g, category, name + suffix, first, second); };

    const auto s = graph::addExtract(graph, "extract_src" + suffix, source, index);
    const auto t = graph::addExtract(graph, "extract_tint" + suffix, tint, index);
    const auto product = binary("multiply", "source_multiply_tint", s, t);
    const auto under = binary("multiply", "under_result", product, two);
    const auto minusS = binary("subtract", "one_minus_src", one, s);
    const auto minusT = binary("subtract", "one_minus_tint", one, t);
    const auto minusProduct = binary("multiply", "minSrc_mul_minTint", minusS, minusT);
    const auto doubled = binary("multiply", "double_minSrc_mul_minTint", minusProduct, two);
    const auto over = binary("subtract", "over_result", one, doubled);

    const auto& type = graph::typeStringOf<float>();
    mx::NodePtr chosen = graph->addNode("ifgreatereq", "ifgreater_than_factor" + suffix, type);
    graph::addSourceInput(chosen, "value1", s, type);
    graph::addTypedInput(chosen, "value2", half);
    graph::addSourceInput(chosen, "in1", over, type);
    graph::addSourceInput(chosen, "in2", under, type);
    return chosen;
}

} // namespace

mx::OutputPtr addTintNetwork(const mx::NodeGraphPtr& graph, const mx::InputPtr& source,
                             const mx::InputPtr& tint, const std::string& outputName,
                             const std::string& type)
{
    TintNetwork network{graph, source, tint, {}, {}};
    network.two = graph::addConstantFloat(graph, "valueTwo", 2.0f);
    network.one = graph::addConstantFloat(graph, "valueOne", 1.0f);

    const char* const suffixes[] = {"r", "g", "b"};
    mx::NodePtr channels[3];
    for (int i = 0; i < 3; ++i)
        channels[i] = addOverlayChannel(network, suffixes[i], i);

    const mx::NodePtr overlay =
        graph->addNode("combine3", "combine_color3", graph::typeStringOf<mx::Color3>());
    for (int i = 0; i < 3; ++i)
        graph::addSourceInput(overlay, "in" + std::to_string(i + 1), channels[i],
                              graph::typeStringOf<float>());
    const mx::NodePtr mixed = graph::addMix(graph, "src_mix_res", overlay, source, half);
    const mx::NodePtr stained =
        graph::addBinary(graph, "multiply", "tint_res_multiply", mixed, tint);
    const mx::NodePtr result = graph::addMix(graph, "second_mix", stained, mixed, half);
    return graph::addOutput(graph, outputName, result, type);
}

mx::OutputPtr addTintGraph(const mx::DocumentPtr& document, const mx::OutputPtr& texture,
                           const assets::DeclaredColor& tint)
{
    const mx::NodeGraphPtr graph =
        document->addNodeGraph(graph::freeName(document, "hardWoodTint_nodegraph"));
    const auto& type = graph::typeStringOf<mx::Color3>();
    const mx::InputPtr source = graph->addInput("generic_diffuse", type);
    source->setConnectedOutput(texture);
    const mx::InputPtr color = graph::addTypedInput(graph, "tint_color", tint.color);
    color->setColorSpace(tint.colorSpace);
    mx::OutputPtr result = addTintNetwork(graph, source, color, "tint_color_result", type);
    // Code generators look for the colour space only where the colour is read.
    for (const mx::NodePtr& node : graph->getNodes())
        for (const mx::InputPtr& input : node->getInputs())
            if (input->getInterfaceName() == color->getName())
                input->setColorSpace(tint.colorSpace);
    return result;
}

} // namespace vyr::MaterialTranslation::materials
