#include "materials/LyrexFamilies.h"

#include <algorithm>
#include <iterator>

#include "assets/Schemas.h"
#include "assets/Units.h"

namespace vyr::MaterialTranslation::materials
{

namespace
{

using enum LyrexType;

constexpr LyrexInput metal[] = {
    {"metal_f0", Color},
    {"surface_albedo", Color},
    {"surface_roughness", Float},
    {"surface_anisotropy", Float},
    {"surface_rotation", Float, assets::angleUnitType},
    {"surface_normal", Vector},
    {"surface_cutout", Color},
};

constexpr LyrexInput opaque[] = {
    {"surface_normal", Vector},
    {"surface_cutout", Color},
    {"surface_albedo", Color},
    {"opaque_albedo", Color},
    {"surface_roughness", Float},
    {"surface_anisotropy", Float},
    {"surface_rotation", Float, assets::angleUnitType},
    {"opaque_f0", Float},
    {"opaque_translucency", Boolean},
    {"opaque_mfp_modifier", Color},
    {"opaque_mfp", Float, assets::distanceUnitType},
    {"opaque_emission", Boolean},
    {"opaque_luminance", Float},
    {"opaque_luminance_modifier", Color},
};

constexpr LyrexInput transparent[] = {
    {"surface_albedo", Color},
    {"surface_roughness", Float},
    {"surface_anisotropy", Float},
    {"surface_rotation", Float, assets::angleUnitType},
    {"surface_normal", Vector},
    {"surface_cutout", Color},
    {"transparent_ior", Float},
    {"transparent_color", Color},
    {"transparent_distance", Float, assets::distanceUnitType},
};

constexpr LyrexInput layered[] = {
    {"surface_albedo", Color},     {"surface_roughness", Float},
    {"surface_anisotropy", Float}, {"surface_rotation", Float, assets::angleUnitType},
    {"surface_normal", Vector},    {"surface_cutout", Color},
    {"layered_f0", Float},         {"layered_roughness", Float},
    {"layered_anisotropy", Float}, {"layered_rotation", Float, assets::angleUnitType},
    {"layered_diffuse", Color},    {"layered_bottom_f0", Color},
    {"layered_fraction", Float},   {"layered_fraction_invert", Boolean},
    {"layered_normal", Vector},
};

constexpr LyrexInput glazing[] = {
    {"surface_albedo", Color},
    {"surface_roughness", Float},
    {"surface_anisotropy", Float},
    {"surface_rotation", Float, assets::angleUnitType},
    {"surface_normal", Vector},
    {"surface_cutout", Color},
    {"glazing_transmission_color", Color},
    {"glazing_transmission_roughness", Float},
    {"glazing_f0", Color},
    {"glazing_backface_culling", Boolean},
};

constexpr LyrexFamily families[] = {
    {assets::lyrexMetalSchema, "kvor:metal", metal},
    {assets::lyrexOpaqueSchema, "kvor:opaque", opaque},
    {assets::lyrexTransparentSchema, "kvor:transparent", transparent},
    {assets::lyrexLayeredSchema, "kvor:layered", layered},
    {assets::lyrexGlazingSchema, "kvor:glazing", glazing},
};

} // namespace

const char* typeName(LyrexType type)
{
    switch (type)
    {
    case Color:
        return "color3";
    case Vector:
        return "vector3";
    case Boolean:
        return "boolean";
    case Float:
        break;
    }
    return "float";
}

std::span<const LyrexFamily> lyrexFamilies()
{
    return families;
}

const LyrexFamily* findLyrexFamily(std::string_view schema)
{
    const auto* family =
        std::ranges::find_if(families, [&](const LyrexFamily& f) { return f.schema == schema; });
    return family == std::end(families) ? nullptr : family;
}

} // namespace vyr::MaterialTranslation::materials
