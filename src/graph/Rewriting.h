#pragma once

#include <MaterialXCore/Document.h>

/// @file
/// What takes documents apart and puts them together, as opposed to building them.

namespace vyr::MaterialTranslation::graph
{

/// Adds a copy of an element with all that is in it, under its own name, which must be free.
MaterialX::ElementPtr addCopy(const MaterialX::ElementPtr& parent,
                              const MaterialX::ElementPtr& element);

/// Adds an output that follows a node through what is done to the graph, to be removed afterwards.
MaterialX::OutputPtr addMark(const MaterialX::GraphElementPtr& graph,
                             const MaterialX::NodePtr& node);

} // namespace vyr::MaterialTranslation::graph
