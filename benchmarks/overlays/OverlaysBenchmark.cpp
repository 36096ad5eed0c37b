// What Convert costs for a decal or a thread beside making the same text by MaterialX's interface alone: the ratio is
// the figure, at most 1.25.

#include <array>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <MaterialXCore/Document.h>
#include <MaterialXFormat/XmlIo.h>

#include <MaterialTranslation/DecalInfo.h>
#include <MaterialTranslation/MaterialXConverter.h>
#include <MaterialTranslation/ThreadInfo.h>

#include "PairedTiming.h"

namespace vyr::benchmarks
{

namespace
{

namespace mt = MaterialTranslation;
namespace mx = MaterialX;

using kelvor::platform::core::string::IString;
using kelvor::platform::core::string::UTF8String;

class Text final : public IString
{
  public:
    void Assign(const UTF8String& assigned) override { text = assigned.str(); }
    std::string text;
};

struct HandInput
{
    std::string name;
    std::string type;
    /// Null where the input is connected.
    mx::ValuePtr value;
    /// Of a value with more digits than MaterialX writes; else empty.
    std::string digits;
    std::string node, graph, output;
    std::string colorSpace, unit, unitType;
};

struct HandNode
{
    std::string category;
    std::string name;
    std::string type;
    std::string converter;
    std::vector<HandInput> inputs;
};

/// An overlay's document, as somebody knows it who writes it by hand: an output of the graph comes right behind its
/// node.
struct HandDocument
{
    std::vector<HandNode> top;
    std::string graph;
    /// Those of the category "output" are outputs, with one input that has their source.
    std::vector<HandNode> nodes;
};

HandInput inputOf(const mx::PortElementPtr& port)
{
    const mx::ValuePtr value = port->getValue();
    const bool isExact = !value || value->getValueString() == port->getValueString();
    return {port->getName(),
            port->getType(),
            value,
            isExact ? std::string() : port->getValueString(),
            port->getNodeName(),
            port->getAttribute("nodegraph"),
            port->getAttribute("output"),
            port->getAttribute("colorspace"),
            port->getAttribute("unit"),
            port->getAttribute("unittype")};
}

HandNode nodeOf(const mx::ElementPtr& element)
{
    HandNode node{element->getCategory(),
                  element->getName(),
                  element->getAttribute("type"),
                  element->getAttribute("vyr_converter"),
                  {}};
    if (const auto output = element->asA<mx::Output>())
        node.inputs.push_back(inputOf(output));
    for (const mx::ElementPtr& child : element->getChildren())
        node.inputs.push_back(inputOf(child->asA<mx::PortElement>()));
    return node;
}

HandDocument contentsOf(const std::string& text)
{
    const mx::DocumentPtr document = mx::createDocument();
    mx::readFromXmlString(document, text);
    HandDocument hand;
    for (const mx::ElementPtr& child : document->getChildren())
        if (!child->isA<mx::NodeGraph>())
            hand.top.push_back(nodeOf(child));
        else
        {
            hand.graph = child->getName();
            for (const mx::ElementPtr& node : child->getChildren())
                hand.nodes.push_back(nodeOf(node));
        }
    return hand;
}

void addInput(const mx::NodePtr& node, const HandInput& hand)
{
    const mx::InputPtr input = node->addInput(hand.name, hand.type);
    if (hand.value)
        input->setValueString(hand.digits.empty() ? hand.value->getValueString() : hand.digits);
    if (!hand.node.empty())
        input->setNodeName(hand.node);
    if (!hand.graph.empty())
    {
        input->setOutputString(hand.output);
        input->setNodeGraphString(hand.graph);
    }
    if (!hand.colorSpace.empty())
        input->setColorSpace(hand.colorSpace);
    if (!hand.unit.empty())
    {
        input->setUnit(hand.unit);
        input->setUnitType(hand.unitType);
    }
}

void addNode(const mx::GraphElementPtr& graph, const HandNode& hand)
{
    if (hand.category == "output")
    {
        graph->asA<mx::NodeGraph>()
            ->addOutput(hand.name, hand.type)
            ->setNodeName(hand.inputs[0].node);
        return;
    }
    const mx::NodePtr node = graph->addNode(hand.category, hand.name, hand.type);
    if (!hand.converter.empty())
        node->setAttribute("vyr_converter", hand.converter);
    for (const HandInput& input : hand.inputs)
        addInput(node, input);
}

std::string writeByHand(const HandDocument& hand)
{
    const mx::DocumentPtr document = mx::createDocument();
    document->setColorSpace("lin_rec709");
    for (const HandNode& node : hand.top)
        addNode(document, node);
    const mx::NodeGraphPtr graph = document->addNodeGraph(hand.graph);
    for (const HandNode& node : hand.nodes)
        addNode(graph, node);
    return mx::writeToXmlString(document);
}

mt::TextureInfo image()
{
    mt::TextureInfo texture;
    texture.path = VYR_IMAGE;
    texture.realWorldScale = {25.13f, 10.1f};
    texture.rotation = 12.5f;
    return texture;
}

std::string convert(mt::MaterialXConverter& converter, mt::ConversionType type, void* payload)
{
    mt::MaterialInfo info;
    info.name = "Overlay";
    info.type = type;
    info.payload = payload;
    Text text;
    converter.Convert(info, text);
    return std::move(text.text);
}

void measure(benchmark::State& state, mt::ConversionType type, void* payload)
{
    mt::ConverterOptions options;
    mt::MaterialXConverter converter(options);
    const std::string text = convert(converter, type, payload);
    const HandDocument hand = contentsOf(text);
    if (writeByHand(hand) != text)
        throw std::runtime_error("the document by hand is not that of the converter:\n" +
                                 writeByHand(hand));
    constexpr int count = 50;
    PairedTiming timing(1);
    for (auto step : state)
        state.SetIterationTime(timing.measure(
            0,
            [&]
            {
                for (int i = 0; i < count; ++i)
                    benchmark::DoNotOptimize(convert(converter, type, payload));
            },
            [&]
            {
                for (int i = 0; i < count; ++i)
                    benchmark::DoNotOptimize(writeByHand(hand));
            }));
    state.counters["ratio"] = timing.ratio();
    state.counters["overlays/s"] = count / timing.ours();
    state.counters["by hand/s"] = count / timing.floor();
}

void decal(benchmark::State& state, int kind)
{
    mt::DecalInfo info;
    info.kind = kind;
    info.value1 = 255;
    info.texture = image();
    measure(state, mt::ConversionType::Decal, &info);
}
BENCHMARK_CAPTURE(decal, by_alpha, 1)
    ->Iterations(200)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decal, by_key, 2)
    ->Iterations(200)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

void thread(benchmark::State& state, bool isWhole)
{
    mt::ThreadInfo info;
    info.threadTexture = std::make_shared<mt::TextureInfo>(image());
    if (isWhole)
    {
        info.flag = true;
        info.normalTexture = info.threadTexture;
        info.baseMaterialColor =
            std::make_shared<std::array<float, 4>>(std::array{0.51f, 0.52f, 0.53f, 1.0f});
        info.startClippingPlane =
            std::make_shared<std::array<float, 4>>(std::array{0.5f, 0.25f, 1.0f, 0.125f});
        info.endClippingPlane = info.startClippingPlane;
    }
    measure(state, mt::ConversionType::Thread, &info);
}
BENCHMARK_CAPTURE(thread, image_alone, false)
    ->Iterations(200)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(thread, with_everything, true)
    ->Iterations(200)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace

} // namespace vyr::benchmarks
