#pragma once

#include <array>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include <MaterialXCore/Types.h>

#include "textures/Texture.h"

namespace vyr::MaterialTranslation::materials
{

/// One value for each input of MaterialX's `standard_surface`, in the model's order and at its
/// defaults, except that the two normals and the tangent are (1, 1, 1): they are never written as
/// plain values, only driven by a texture.
struct StandardSurfaceParams
{
    using Color = MaterialX::Color3; ///< linear Rec.709 unless a document says otherwise

    float base = 1.0f;
    Color base_color{0.8f, 0.8f, 0.8f};
    float diffuse_roughness = 0.0f;
    float metalness = 0.0f;
    float specular = 1.0f;
    Color specular_color{1.0f, 1.0f, 1.0f};
    float specular_roughness = 0.2f;
    float specular_IOR = 1.5f;
    float specular_anisotropy = 0.0f;
    float specular_rotation = 0.0f;
    float transmission = 0.0f;
    Color transmission_color{1.0f, 1.0f, 1.0f};
    float transmission_depth = 0.0f;
    Color transmission_scatter{0.0f, 0.0f, 0.0f};
    float transmission_scatter_anisotropy = 0.0f;
    float transmission_dispersion = 0.0f;
    float transmission_extra_roughness = 0.0f;
    float subsurface = 0.0f;
    Color subsurface_color{1.0f, 1.0f, 1.0f};
    Color subsurface_radius{1.0f, 1.0f, 1.0f};
    float subsurface_scale = 1.0f;
    float subsurface_anisotropy = 0.0f;
    float sheen = 0.0f;
    Color sheen_color{1.0f, 1.0f, 1.0f};
    float sheen_roughness = 0.3f;
    float coat = 0.0f;
    Color coat_color{1.0f, 1.0f, 1.0f};
    float coat_roughness = 0.1f;
    float coat_anisotropy = 0.0f;
    float coat_rotation = 0.0f;
    float coat_IOR = 1.5f;
    std::array<float, 3> coat_normal{1.0f, 1.0f, 1.0f};
    float coat_affect_color = 0.0f;
    float coat_affect_roughness = 0.0f;
    float thin_film_thickness = 0.0f;
    float thin_film_IOR = 1.5f;
    float emission = 0.0f;
    Color emission_color{1.0f, 1.0f, 1.0f};
    Color opacity{1.0f, 1.0f, 1.0f};
    bool thin_walled = false;
    MaterialX::Vector3 normal{1.0f, 1.0f, 1.0f};
    MaterialX::Vector3 tangent{1.0f, 1.0f, 1.0f};
    std::string category = "standard_surface";
};

/// A texture, and the property that names its node.
struct DrivingTexture
{
    std::string property;
    textures::Texture texture;
};

/// The colour that tints a wood, as the asset states it.
struct Tint
{
    StandardSurfaceParams::Color color;
    std::string colorSpace;
};

/// All that a document of a `standard_surface` material is built from.
struct StandardSurface
{
    StandardSurfaceParams params;
    /// By the name of the shader input that each drives.
    std::map<std::string, DrivingTexture, std::less<>> textures;
    /// Of the texture that drives the base colour.
    std::optional<Tint> tint;
};

/// Adds a material to the translation's document: shader node, material node, the look when it is
/// asked for, and a node graph when textures drive shader inputs.
/// @return false, with the reason in the log and nothing added, when the document is null or one of
///         the names is taken in it.
bool buildStandardSurface(const StandardSurface& material, const Translation& translation);

} // namespace vyr::MaterialTranslation::materials
