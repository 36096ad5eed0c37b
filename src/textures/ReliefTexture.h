#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include <MaterialXCore/Document.h>

#include <MaterialTranslation/Bakes.h>

#include "assets/AssetView.h"
#include "assets/Log.h"
#include "textures/TexturePlacement.h"

namespace vyr::MaterialTranslation::textures
{

/// A bitmap texture asset whose image is the height of the surface's relief.
struct BumpTexture
{
    /// The image file; empty when the asset names none, and then nothing else is read.
    std::string image;
    TexturePlacement placement;
};

/// A noise texture asset whose values are the height of the surface's relief.
struct NoiseTexture
{
    /// All but the size in pixels.
    NoiseBakeOptions noise;
    Measured<assets::Vector2> realWorldScale;
};

/// @throws assets::PropertyError for a property of the wrong type.
BumpTexture readBumpTexture(const assets::AssetView& bitmap, const Log& log);
NoiseTexture readNoiseTexture(const assets::AssetView& noise, const Log& log);

/// Where a relief is baked, and how strong it is.
struct ReliefBuild
{
    const MaterialX::NodeGraphPtr& graph;
    /// Name of the node.
    const std::string& name;
    /// MaterialX's name of the value type.
    const std::string& type;
    /// The material's folder, made when it is missing.
    std::filesystem::path folder;
    float bumpAmount = 0.0f;
    /// Width and height of images that are baked from procedural textures.
    std::uint64_t imageSize = 0;
    const Log& log;
    /// The baked file; empty when there is none.
    std::filesystem::path baked;
};

/// Bakes a normal map from the image and adds a "kvor:normal_map" node that reads it, with its
/// output.
/// @return null, and nothing added, when the texture has no image or the bake failed; the log then
///         says why.
/// @throws std::filesystem::filesystem_error "create_directory"
MaterialX::OutputPtr addBakedNormalMap(const BumpTexture& bump, ReliefBuild& build);
MaterialX::OutputPtr addNoiseNormalMap(const NoiseTexture& noise, ReliefBuild& build);

} // namespace vyr::MaterialTranslation::textures
