#pragma once

#include <map>
#include <optional>
#include <string>

#include "materials/StandardSurfaceParams.h"
#include "textures/ConnectedTexture.h"

namespace vyr::MaterialTranslation::materials
{

/// The textures of a material, by the name of the shader input that each drives.
using TextureMap = std::map<std::string, textures::ConnectedTexture, std::less<>>;

/// What was read of a material of the Generic family; all that a document is built from.
struct GenericMaterial
{
    StandardSurfaceParams params;
    TextureMap textures;
    /// Strength of the bump that drives "normal".
    float bumpAmount = 0.0f;
    /// The colour that tints a wood's base colour.
    std::optional<StandardSurfaceParams::Color> tint;
};

} // namespace vyr::MaterialTranslation::materials
