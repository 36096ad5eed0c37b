#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <MaterialXCore/Document.h>

#include <MaterialTranslation/ConverterOptions.h>

#include "assets/AssetView.h"
#include "assets/Log.h"
#include "textures/BitmapTexture.h"
#include "textures/MapTexture.h"
#include "textures/ReliefTexture.h"

namespace vyr::MaterialTranslation::textures
{

/// A texture that drives a material's property, as plain records: everything that can be wrong with
/// the asset is found before anything is built.
struct ConnectedTexture
{
    /// The material's property, which also names the texture's node.
    std::string property;
    std::variant<BitmapTexture, BumpTexture, NoiseTexture, MapTexture> content;
};

/// What a texture is for.
enum class TextureRole
{
    /// It gives the value of a colour or number.
    Value,
    /// It gives the height of the surface's relief.
    Relief,
    /// It drives a property of the "Lyrex" family: a bitmap for its value, or a height or normal map.
    Lyrex,
};

/// A property that a texture may drive.
struct TexturedProperty
{
    const assets::AssetView& material;
    const char* name;
    TextureRole role;
    /// MaterialX's name of the property's value type.
    const char* type;
    const Log& log;
};

/// Reads the texture that drives a property. Warns about a texture that cannot be used, and
/// about whatever it says that the document will not.
/// @return nothing when no usable texture is connected: the property's plain value then holds.
/// @throws assets::PropertyError, with the property's path, for a texture's property of the wrong
///         type; "Unhandled Schema <schema>" for a schema that the "Lyrex" family does not know.
std::optional<ConnectedTexture> readConnectedTexture(const TexturedProperty& property);

/// What the textures of one material are built into.
struct TextureBuild
{
    /// Base of the element names and of the folder for baked images.
    const std::string& material;
    const ConverterOptions& options;
    MaterialX::NodeGraphPtr graph;
    /// Strength of the material's relief.
    float bumpAmount = 0.0f;
    const Log& log;
    /// Receives the files that were baked.
    std::vector<std::filesystem::path>& baked;
};

/// Adds the texture's node, named after the property, and its output to the material's node graph.
/// @param type MaterialX's name of the value type.
/// @return the graph's output; null when the texture came to nothing.
/// @throws std::filesystem::filesystem_error when a relief's folder cannot be made.
MaterialX::OutputPtr addConnectedTexture(const ConnectedTexture& texture, const std::string& type,
                                         const TextureBuild& build);

} // namespace vyr::MaterialTranslation::textures
