#pragma once

#include <optional>
#include <string>

#include <MaterialXCore/Document.h>

#include "assets/AssetView.h"
#include "assets/Log.h"
#include "textures/TexturePlacement.h"

namespace vyr::MaterialTranslation::textures
{

/// A texture asset whose image is a height or a normal map.
struct MapTexture
{
    enum class Kind
    {
        Height,
        Normal,
    };

    Kind kind = Kind::Height;
    /// The image file; empty when the asset names none, and then nothing else is read.
    std::string image;
    std::string colorSpace;
    TexturePlacement placement;
    /// The relief's depth in world units, or the strength of the normals.
    Measured<float> strength;
};

/// Reads a height-map texture.
/// @param imageProperty names the image.
/// @param givenDepth replaces the asset's own depth; it borrows the unit of the image's size in the
///        world.
/// @throws assets::PropertyError for a property of the wrong type.
MapTexture readHeightMapTexture(const assets::AssetView& texture, const char* imageProperty,
                                const std::optional<float>& givenDepth, const Log& log);

/// Reads a normal-map texture.
/// @param givenScale replaces the asset's own scale; it has no unit.
/// @throws assets::PropertyError for a property of the wrong type.
MapTexture readNormalMapTexture(const assets::AssetView& texture, const char* imageProperty,
                                const std::optional<float>& givenScale, const Log& log);

/// Adds a "kvor:height_map" or "kvor:normal_map" node and its output to a node graph.
/// @return the graph's output; null, and nothing added, for a texture without an image.
MaterialX::OutputPtr addMapTexture(const MapTexture& map, const MaterialX::NodeGraphPtr& graph,
                                   const std::string& name, const std::string& type);

} // namespace vyr::MaterialTranslation::textures
