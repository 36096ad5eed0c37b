#pragma once

#include <string>
#include <string_view>

#include <MaterialXCore/Document.h>

#include <MaterialTranslation/TextureInfo.h>

#include "graph/Values.h"

/// @file
/// Names of elements, and the nodes that graphs use again and again. A source is a sibling node or a
/// published input of the graph; with a null source the input is there, but unconnected.
namespace vyr::MaterialTranslation::graph
{

/// Whether a text can be the base of element names: ASCII letters, digits and "_", not empty, and
/// no digit first. MaterialX's own check lets empty names and leading digits through.
bool isIdentifier(std::string_view name);

/// `name`, or `name` with the smallest number from 2 behind it that is not taken.
template <class IsTaken> std::string freeName(const std::string& name, IsTaken isTaken)
{
    std::string candidate = name;
    for (int number = 2; isTaken(candidate); ++number)
        candidate = name + std::to_string(number);
    return candidate;
}
/// The same, free in `parent`.
std::string freeName(const MaterialX::ConstElementPtr& parent, const std::string& name);

/// Adds an output of a name and type to a node graph and connects it to a node.
MaterialX::OutputPtr addOutput(const MaterialX::NodeGraphPtr& graph, const std::string& name,
                               const MaterialX::NodePtr& node, const std::string& type);

/// The same, named after the node ("<node>_output") and of its type.
MaterialX::OutputPtr addNodeOutput(const MaterialX::NodeGraphPtr& graph,
                                   const MaterialX::NodePtr& node);

/// Adds an input of a type and connects it to a source.
MaterialX::InputPtr addSourceInput(const MaterialX::NodePtr& node, const std::string& name,
                                   const MaterialX::TypedElementPtr& source,
                                   const std::string& type);

/// A "constant" node of type "float".
MaterialX::NodePtr addConstantFloat(const MaterialX::GraphElementPtr& graph,
                                    const std::string& name, float value);

/// A "constant" node of the value's type.
template <class Value>
MaterialX::NodePtr addConstant(const MaterialX::GraphElementPtr& graph, const std::string& name,
                               const Value& value)
{
    MaterialX::NodePtr node = graph->addNode("constant", name, typeStringOf<Value>());
    addTypedInput(node, "value", value);
    return node;
}

/// An "extract" node: channel `index` of the source.
MaterialX::NodePtr addExtract(const MaterialX::GraphElementPtr& graph, const std::string& name,
                              const MaterialX::TypedElementPtr& source, int index);

/// A "switch" node between two sources, of the type of the first.
MaterialX::NodePtr addSwitch(const MaterialX::GraphElementPtr& graph, const std::string& name,
                             const MaterialX::TypedElementPtr& first,
                             const MaterialX::TypedElementPtr& second, int selector);

/// A node with the inputs "in1" and "in2", such as "multiply", of the type of the first source.
MaterialX::NodePtr addBinary(const MaterialX::GraphElementPtr& graph, const std::string& category,
                             const std::string& name, const MaterialX::TypedElementPtr& first,
                             const MaterialX::TypedElementPtr& second);

/// The same with a value in place of the second source.
template <class Value>
MaterialX::NodePtr addBinaryWith(const MaterialX::GraphElementPtr& graph,
                                 const std::string& category, const std::string& name,
                                 const MaterialX::TypedElementPtr& first, const Value& second)
{
    MaterialX::NodePtr node = graph->addNode(category, name, first->getType());
    addSourceInput(node, "in1", first, first->getType());
    addTypedInput(node, "in2", second);
    return node;
}

/// A "mix" node of the type of the foreground: foreground x factor + background x (1 - factor).
MaterialX::NodePtr addMix(const MaterialX::GraphElementPtr& graph, const std::string& name,
                          const MaterialX::TypedElementPtr& foreground,
                          const MaterialX::TypedElementPtr& background, float factor);

/// A "mix" node with a factor of the graph's: a source of type "float".
MaterialX::NodePtr addMix(const MaterialX::GraphElementPtr& graph, const std::string& name,
                          const MaterialX::TypedElementPtr& foreground,
                          const MaterialX::TypedElementPtr& background,
                          const MaterialX::TypedElementPtr& factor);

/// A comparison, such as "ifgreater": where `first` compares so with `second`, the node gives `met`,
/// else `unmet`.
template <class Value>
MaterialX::NodePtr addComparison(const MaterialX::GraphElementPtr& graph,
                                 const std::string& category, const std::string& name,
                                 const MaterialX::TypedElementPtr& first, float second,
                                 const Value& met, const Value& unmet)
{
    MaterialX::NodePtr node = graph->addNode(category, name, typeStringOf<Value>());
    addSourceInput(node, "value1", first, typeStringOf<float>());
    addTypedInput(node, "value2", second);
    addTypedInput(node, "in1", met);
    addTypedInput(node, "in2", unmet);
    return node;
}

/// A node of one input "in", such as "magnitude".
/// @param type MaterialX's name of the node's output type.
MaterialX::NodePtr addUnary(const MaterialX::GraphElementPtr& graph, const std::string& category,
                            const std::string& name, const MaterialX::TypedElementPtr& source,
                            const std::string& type);

/// Adds a "kvor:placement" node: the place in the image of a record, 0 to 1 from its lower left to its
/// upper right corner.
MaterialX::NodePtr addPlacement(const MaterialX::GraphElementPtr& graph, const std::string& name,
                                const TextureInfo& texture);

/// Adds a "kvor:bitmap" node for a decal: the image, sRGB, placed as the record says, and never
/// repeated.
/// @param type MaterialX's name of the node's output type.
MaterialX::NodePtr addPlacedTextureNode(const MaterialX::GraphElementPtr& graph,
                                        const std::string& name, const TextureInfo& texture,
                                        const std::string& type);

/// Adds a texture node of a category for a thread: the image placed as the record says, and always
/// repeated.
/// @param linear whether the image holds data instead of sRGB colours.
MaterialX::NodePtr addPlacedTextureNode(const MaterialX::GraphElementPtr& graph,
                                        const std::string& category, const std::string& name,
                                        const TextureInfo& texture, const std::string& type,
                                        bool linear);

/// Adds "uaddressmode" and "vaddressmode": "periodic" where the image repeats, else "clamp".
void setAddressModes(const MaterialX::NodePtr& node, bool repeatU, bool repeatV);

} // namespace vyr::MaterialTranslation::graph
