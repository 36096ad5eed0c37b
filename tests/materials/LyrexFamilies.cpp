#include "materials/LyrexFamilies.h"

namespace vyr::materialtests
{

using enum Kind;

const std::vector<Family>& families()
{
    static const std::vector<Family> all{
        {"LyrexMetalSchema",
         "kvor:metal",
         {{"metal_f0", Color},
          {"surface_albedo", Color},
          {"surface_roughness", Float},
          {"surface_anisotropy", Float},
          {"surface_rotation", Float},
          {"surface_normal", Vector},
          {"surface_cutout", DataColor}}},
        {"LyrexOpaqueSchema",
         "kvor:opaque",
         {{"surface_normal", Vector},
          {"surface_cutout", DataColor},
          {"surface_albedo", Color},
          {"opaque_albedo", Color},
          {"surface_roughness", Float},
          {"surface_anisotropy", Float},
          {"surface_rotation", Float},
          {"opaque_f0", Float},
          {"opaque_translucency", Boolean},
          {"opaque_mfp_modifier", DataColor},
          {"opaque_mfp", Float},
          {"opaque_emission", Boolean},
          {"opaque_luminance", Float},
          {"opaque_luminance_modifier", Color}}},
        {"LyrexTransparentSchema",
         "kvor:transparent",
         {{"surface_albedo", Color},
          {"surface_roughness", Float},
          {"surface_anisotropy", Float},
          {"surface_rotation", Float},
          {"surface_normal", Vector},
          {"surface_cutout", DataColor},
          {"transparent_ior", Float},
          {"transparent_color", Color},
          {"transparent_distance", Float}}},
        {"LyrexLayeredSchema",
         "kvor:layered",
         {{"surface_albedo", Color},
          {"surface_roughness", Float},
          {"surface_anisotropy", Float},
          {"surface_rotation", Float},
          {"surface_normal", Vector},
          {"surface_cutout", DataColor},
          {"layered_f0", Float},
          {"layered_roughness", Float},
          {"layered_anisotropy", Float},
          {"layered_rotation", Float},
          {"layered_diffuse", Color},
          {"layered_bottom_f0", Color},
          {"layered_fraction", Float},
          {"layered_fraction_invert", Boolean},
          {"layered_normal", Vector}}},
        {"LyrexGlazingSchema",
         "kvor:glazing",
         {{"surface_albedo", Color},
          {"surface_roughness", Float},
          {"surface_anisotropy", Float},
          {"surface_rotation", Float},
          {"surface_normal", Vector},
          {"surface_cutout", DataColor},
          {"glazing_transmission_color", Color},
          {"glazing_transmission_roughness", Float},
          {"glazing_f0", Color},
          {"glazing_backface_culling", Boolean}}},
    };
    return all;
}

const char* typeOf(Kind kind)
{
    switch (kind)
    {
    case Float:
        return "float";
    case Vector:
        return "vector3";
    case Boolean:
        return "boolean";
    default:
        return "color3";
    }
}

const char* colorSpaceOf(Kind kind)
{
    switch (kind)
    {
    case Color:
        return "rec709_display";
    case DataColor:
    case Vector:
        return "lin_rec709";
    default:
        return "";
    }
}

void setPlain(AssetBuilder& builder, const Property& property, int position)
{
    switch (property.kind)
    {
    case Float:
        builder.scalar(property.name, position + 0.5);
        break;
    case Vector:
        builder.scalars(property.name, {position + 0.25, -1.0, 8.0});
        break;
    case Boolean:
        builder.boolean(property.name, position % 2 == 1);
        break;
    default:
        builder.color(property.name, position + 0.125, 0.25, 0.75, 0.5);
    }
}

std::string plainText(const Property& property, int position)
{
    const std::string number = std::to_string(position);
    switch (property.kind)
    {
    case Float:
        return number + ".5";
    case Vector:
        return number + ".25, -1, 8";
    case Boolean:
        return position % 2 == 1 ? "true" : "false";
    default:
        // Six digits, as in all documents.
        return number + ".125, 0.25, 0.75";
    }
}

AssetBuilder lyrexBuilder(const char* schema)
{
    AssetBuilder builder(schema);
    builder.text("VersionGUID", schema);
    return builder;
}

AssetBuilder bumpBuilder(const std::string& type, const std::string& path)
{
    AssetBuilder builder("BumpMapSchema");
    builder.text("VersionGUID", "BumpMapSchema").uri("bumpmap_Bitmap", path);
    if (!type.empty())
        builder.choice("bumpmap_Type", type);
    return builder;
}

} // namespace vyr::materialtests
