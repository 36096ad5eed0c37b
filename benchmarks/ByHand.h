#pragma once

#include <string>
#include <utility>
#include <vector>

#include <MaterialXCore/Document.h>
#include <MaterialXFormat/XmlIo.h>

/// @file
/// The floor of the benchmarks: a document that is built by MaterialX's interface and nothing else.
namespace vyr::benchmarks
{

struct HandInput
{
    std::string name;
    std::string type;
    /// Null where the input is connected.
    MaterialX::ValuePtr value;
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
    /// Those that only the converter's documents have.
    std::vector<std::pair<std::string, std::string>> attributes;
    std::vector<HandInput> inputs;
};

/// A document, as somebody knows it who writes it by hand: an output of a graph comes right behind its node.
struct HandDocument
{
    std::vector<HandNode> top;
    /// Empty without a graph.
    std::string graph;
    /// Those of the category "output" are outputs, with one input that has their source.
    std::vector<HandNode> nodes;
};

inline HandInput inputOf(const MaterialX::PortElementPtr& port)
{
    const MaterialX::ValuePtr value = port->getValue();
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

inline HandNode nodeOf(const MaterialX::ElementPtr& element)
{
    HandNode node{
        element->getCategory(), element->getName(), element->getAttribute("type"), {}, {}};
    for (const char* name : {"vyr_converter", "vyr_asset", "uiname"})
        if (element->hasAttribute(name))
            node.attributes.emplace_back(name, element->getAttribute(name));
    if (const auto output = element->asA<MaterialX::Output>())
        node.inputs.push_back(inputOf(output));
    for (const MaterialX::ElementPtr& child : element->getChildren())
        node.inputs.push_back(inputOf(child->asA<MaterialX::PortElement>()));
    return node;
}

inline HandDocument contentsOf(const std::string& text)
{
    const MaterialX::DocumentPtr document = MaterialX::createDocument();
    MaterialX::readFromXmlString(document, text);
    HandDocument hand;
    for (const MaterialX::ElementPtr& child : document->getChildren())
        if (!child->isA<MaterialX::NodeGraph>())
            hand.top.push_back(nodeOf(child));
        else
        {
            hand.graph = child->getName();
            for (const MaterialX::ElementPtr& node : child->getChildren())
                hand.nodes.push_back(nodeOf(node));
        }
    return hand;
}

inline void addInput(const MaterialX::NodePtr& node, const HandInput& hand)
{
    const MaterialX::InputPtr input = node->addInput(hand.name, hand.type);
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

inline void addNode(const MaterialX::GraphElementPtr& graph, const HandNode& hand)
{
    if (hand.category == "output")
    {
        graph->asA<MaterialX::NodeGraph>()
            ->addOutput(hand.name, hand.type)
            ->setNodeName(hand.inputs[0].node);
        return;
    }
    const MaterialX::NodePtr node = graph->addNode(hand.category, hand.name, hand.type);
    for (const auto& [name, value] : hand.attributes)
        node->setAttribute(name, value);
    for (const HandInput& input : hand.inputs)
        addInput(node, input);
}

inline MaterialX::DocumentPtr buildByHand(const HandDocument& hand)
{
    MaterialX::DocumentPtr document = MaterialX::createDocument();
    document->setColorSpace("lin_rec709");
    for (const HandNode& node : hand.top)
        addNode(document, node);
    if (hand.graph.empty())
        return document;
    const MaterialX::NodeGraphPtr graph = document->addNodeGraph(hand.graph);
    for (const HandNode& node : hand.nodes)
        addNode(graph, node);
    return document;
}

inline std::string writeByHand(const HandDocument& hand)
{
    return MaterialX::writeToXmlString(buildByHand(hand));
}

} // namespace vyr::benchmarks
