#pragma once

#include <string>

#include <MaterialXCore/Document.h>

#include "assets/AssetView.h"
#include "assets/Log.h"
#include "textures/TexturePlacement.h"

namespace vyr::MaterialTranslation::textures
{

/// What a bitmap texture asset says.
struct BitmapTexture
{
    /// The image file; empty when the asset names none, and then nothing else is read.
    std::string image;
    /// Colour space of the image.
    std::string colorSpace;
    TexturePlacement placement;
    /// Factor on the image's channels.
    float amount = 1.0f;
    /// Whether the image is inverted, before the factor: amount x (1 - image).
    bool invert = false;
};

/// Reads a bitmap texture asset: sRGB, unless the caller knows better.
/// @throws assets::PropertyError for a property of the wrong type.
BitmapTexture readBitmapTexture(const assets::AssetView& bitmap, const Log& log);

/// Adds a "kvor:bitmap" node and its output to a node graph.
/// @param type MaterialX's name of the value type.
/// @return the graph's output; null, and nothing added, for a texture without an image.
MaterialX::OutputPtr addBitmapTexture(const BitmapTexture& bitmap,
                                      const MaterialX::NodeGraphPtr& graph, const std::string& name,
                                      const std::string& type);

} // namespace vyr::MaterialTranslation::textures
