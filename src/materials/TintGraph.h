#pragma once

#include <string>

#include <MaterialXCore/Document.h>

#include "materials/StandardSurface.h"

namespace vyr::MaterialTranslation::materials
{

/// Adds the network that tints a texture's colour to a node graph.
///
/// For each channel with source s and tint t the overlay blend is o = 1 - 2 (1 - s)(1 - t) where s
/// is at least 0.5, else 2 s t, and the result is (s + o) / 2 x (1 + t) / 2: the grain is deepened
/// by the overlay and the whole takes on the stain's colour.
/// @param source color3 input of the graph: the texture.
/// @param tint color3 input of the graph.
/// @return the new graph output, named and typed as asked for.
MaterialX::OutputPtr addTintNetwork(const MaterialX::NodeGraphPtr& graph,
                                    const MaterialX::InputPtr& source,
                                    const MaterialX::InputPtr& tint, const std::string& outputName,
                                    const std::string& type);

/// Adds a node graph of its own that tints the output of a material's node graph. The tint stays as the
/// asset states it; its colour space is stated where it is read.
/// @return the output with the tinted colour.
MaterialX::OutputPtr addTintGraph(const MaterialX::DocumentPtr& document,
                                  const MaterialX::OutputPtr& texture, const Tint& tint);

} // namespace vyr::MaterialTranslation::materials
