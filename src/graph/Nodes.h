#pragma once

#include <string>

#include <MaterialXCore/Document.h>

namespace vyr::MaterialTranslation::graph
{

/// Adds a node. The name must be free in the graph (see Names.h).
MaterialX::NodePtr addNode(const MaterialX::GraphElementPtr& graph, const std::string& category,
                           const std::string& name, const std::string& type);

/// Name of the graph output of a texture's node.
std::string outputName(const std::string& node);

/// Adds an output to a node graph, named after a node (outputName), connected to it and of its type.
MaterialX::OutputPtr addNodeOutput(const MaterialX::NodeGraphPtr& graph,
                                   const MaterialX::NodePtr& node);

/// Adds an output of a name and type to a node graph and connects it to a node.
MaterialX::OutputPtr addOutput(const MaterialX::NodeGraphPtr& graph, const std::string& name,
                               const MaterialX::NodePtr& node, const std::string& type);

MaterialX::NodeGraphPtr addNodeGraph(const MaterialX::DocumentPtr& document,
                                     const std::string& name);

/// Adds the surface material node that uses a shader node.
MaterialX::NodePtr addSurfaceMaterial(const MaterialX::DocumentPtr& document,
                                      const std::string& name, const MaterialX::NodePtr& shader);

/// Assigns a material to all geometry in the look "default", which is added when it is missing.
void assignInDefaultLook(const MaterialX::DocumentPtr& document, const std::string& material);

} // namespace vyr::MaterialTranslation::graph
