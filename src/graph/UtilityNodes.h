#pragma once

#include <string>

#include <MaterialXCore/Document.h>

namespace vyr::MaterialTranslation::graph
{

// Standard nodes that graphs use again and again. A source is a sibling node or a published input
// of the graph; with a null source the input is there, but unconnected.

/// A "constant" node of type "float".
MaterialX::NodePtr addConstantFloat(const MaterialX::GraphElementPtr& graph,
                                    const std::string& name, float value);

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

/// A "mix" node of the type of the foreground: foreground x factor + background x (1 - factor).
MaterialX::NodePtr addMix(const MaterialX::GraphElementPtr& graph, const std::string& name,
                          const MaterialX::TypedElementPtr& foreground,
                          const MaterialX::TypedElementPtr& background, float factor);

/// Adds an input of the source's type and connects it to the source.
MaterialX::InputPtr addSourceInput(const MaterialX::NodePtr& node, const std::string& name,
                                   const MaterialX::TypedElementPtr& source,
                                   const std::string& type);

} // namespace vyr::MaterialTranslation::graph
