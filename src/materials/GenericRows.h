#pragma once

#include <algorithm>
#include <iterator>
#include <string_view>

#include <MaterialTranslation/Schemas.h>

#include "materials/StandardSurface.h"

/// @file
/// The properties of the generic table.
namespace vyr::MaterialTranslation::materials
{

using textures::TextureRole;

/// A property of the generic table. Where a texture may drive it, the row says which shader input, and
/// under which conditions the rules ask for the texture at all.
struct GenericProperty
{
    PropertyRow row;
    const char* input = nullptr;
    TextureRole role = TextureRole::Value;
    /// The property that fades the texture: at 0 and below it does not show.
    const char* fade = nullptr;
    bool (*mayShow)(const assets::Asset& asset) = nullptr;

    constexpr std::string_view name() const { return row.name; }
};

constexpr PropertyRow genericFadeRow(const char* name, const char* meaning)
{
    return {.name = name,
            .kind = PropertyKind::Scalar,
            .meaning = meaning,
            .fallback = {1.0f},
            .least = 0.0f,
            .most = 1.0f,
            .effect = "all or nothing: documents do not blend it, which a warning says"};
}

/// A number from 0 to 1 that a texture may drive.
constexpr PropertyRow genericShareRow(const char* name, const char* meaning, const char* effect)
{
    return {.name = name,
            .kind = PropertyKind::Scalar,
            .meaning = meaning,
            .least = 0.0f,
            .most = 1.0f,
            .takesTexture = true,
            .effect = effect,
            .hasFallback = false};
}

/// Translucency counts for what light passes through: not with a plain transparency of 0.
inline bool mayBeTransparent(const assets::Asset& asset)
{
    const assets::Property transparency = asset["generic_transparency"];
    return transparency.isConnected() || transparency.numberIfAny().value_or(0.0f) > 0.0f;
}

/// All of them. The rules name no other: `row` would not compile.
inline constexpr GenericProperty genericProperties[] = {
    {{.name = "color_by_object",
      .kind = PropertyKind::Boolean,
      .meaning = "the object brings its own colour; the material is grey",
      .effect = "base_color"}},
    {{.name = "generic_diffuse",
      .kind = PropertyKind::Color,
      .meaning = "its own colour",
      .takesTexture = true,
      .effect = "base_color"},
     shaderInput("base_color"),
     TextureRole::Value,
     "generic_diffuse_image_fade"},
    {genericFadeRow("generic_diffuse_image_fade", "0 switches the texture of generic_diffuse off")},
    {genericShareRow(
         "generic_reflectivity_at_0deg", "share of the light that is mirrored, seen straight on",
         "specular and specular_roughness; metalness where generic_is_metal is true, rising from "
         "0.15 to 0.7; an image: specular"),
     shaderInput("specular")},
    {{.name = "generic_is_metal",
      .kind = PropertyKind::Boolean,
      .meaning = "a metal, whose reflection has its own colour",
      .effect = "metalness, by generic_reflectivity_at_0deg"}},
    {genericShareRow("generic_glossiness", "0 is dull, 1 a mirror",
                     "specular_roughness and diffuse_roughness, which are its opposite; an image: "
                     "specular_roughness"),
     shaderInput("specular_roughness")},
    {genericShareRow("generic_transparency", "share of the light that passes", "transmission"),
     shaderInput("transmission"), TextureRole::Value, "generic_transparency_image_fade"},
    {genericFadeRow("generic_transparency_image_fade",
                    "0 switches the texture of generic_transparency off")},
    {genericShareRow("generic_refraction_translucency_weight",
                     "share of the light that is scattered inside",
                     "subsurface and thin_walled, where generic_transparency is above 0; an image: "
                     "transmission_color"),
     shaderInput("transmission_color"), TextureRole::Value, nullptr, mayBeTransparent},
    {{.name = "generic_refraction_index",
      .kind = PropertyKind::Scalar,
      .meaning = "index of refraction: water 1.33, glass 1.5, diamond 2.42",
      .least = 1.0f,
      .most = 5.0f,
      .effect = "specular_IOR, where generic_transparency is above 0",
      .hasFallback = false}},
    {{.name = "generic_cutout_opacity",
      .kind = PropertyKind::Scalar,
      .meaning = "its connected texture cuts holes, where it is black",
      .fallback = {1.0f},
      .least = 0.0f,
      .most = 1.0f,
      .takesTexture = true,
      .effect = "opacity; a plain value has no effect, which a warning says"},
     shaderInput("opacity")},
    {{.name = "generic_self_illum_luminance",
      .kind = PropertyKind::Scalar,
      .meaning = "brightness of a surface that shines by itself",
      .unit = "candelapersquaremeter",
      .least = 0.0f,
      .effect = "emission, 1000 candela per square metre as 1",
      .hasFallback = false}},
    {{.name = "generic_self_illum_filter_map",
      .kind = PropertyKind::Color,
      .meaning = "colour of the light of a surface that shines by itself",
      .fallback = {1.0f, 1.0f, 1.0f},
      .takesTexture = true,
      .effect = "emission_color",
      .needs = "generic_self_illum_luminance"},
     shaderInput("emission_color")},
    {{.name = "generic_bump_amount",
      .kind = PropertyKind::Scalar,
      .meaning = "strength of the relief of generic_bump_map",
      .effect = "normal",
      .hasFallback = false}},
    {{.name = "generic_bump_map",
      .kind = PropertyKind::Reference,
      .meaning = "its connected texture is the height of the relief",
      .takesTexture = true,
      .effect = "normal",
      .needs = "generic_bump_amount"},
     shaderInput("normal"),
     TextureRole::Relief},
};

consteval const GenericProperty& row(std::string_view name)
{
    const auto* found = std::ranges::find(genericProperties, name, &GenericProperty::name);
    return found != std::end(genericProperties) ? *found : throw "a property without a row";
}

} // namespace vyr::MaterialTranslation::materials
