#pragma once

#include <string>

#include <MaterialXCore/Document.h>

#include <MaterialTranslation/TextureInfo.h>

namespace vyr::MaterialTranslation::graph
{

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
