#include "materials/LyrexFamilies.h"

#include <map>

namespace vyr::materialtests
{

namespace
{

/// @param text words such as "metal_f0:color"; "data" is a colour that is not for the eye.
Family family(const char* schema, const char* category, const std::string& text)
{
    const std::map<std::string, Property> kinds{{"color", {"", "color3", "rec709_display"}},
                                                {"data", {"", "color3", "lin_rec709"}},
                                                {"vector", {"", "vector3", "lin_rec709"}},
                                                {"float", {"", "float", ""}},
                                                {"boolean", {"", "boolean", ""}}};
    Family result{schema, category, {}};
    for (const std::string& word : mx::splitString(text, " "))
    {
        const auto parts = mx::splitString(word, ":");
        result.properties.push_back(kinds.at(parts.at(1)));
        result.properties.back().name = parts.at(0);
    }
    return result;
}

} // namespace

const std::vector<Family>& families()
{
    const std::string gloss =
        "surface_albedo:color surface_roughness:float surface_anisotropy:float "
        "surface_rotation:float ";
    const std::string shape = "surface_normal:vector surface_cutout:data ";
    static const std::vector<Family> all{
        family("LyrexMetalSchema", "kvor:metal", "metal_f0:color " + gloss + shape),
        family("LyrexOpaqueSchema", "kvor:opaque",
               shape + "surface_albedo:color opaque_albedo:color surface_roughness:float "
                       "surface_anisotropy:float surface_rotation:float opaque_f0:float "
                       "opaque_translucency:boolean opaque_mfp_modifier:data opaque_mfp:float "
                       "opaque_emission:boolean opaque_luminance:float "
                       "opaque_luminance_modifier:color"),
        family("LyrexTransparentSchema", "kvor:transparent",
               gloss + shape +
                   "transparent_ior:float transparent_color:color transparent_distance:float"),
        family("LyrexLayeredSchema", "kvor:layered",
               gloss + shape +
                   "layered_f0:float layered_roughness:float layered_anisotropy:float "
                   "layered_rotation:float layered_diffuse:color layered_bottom_f0:color "
                   "layered_fraction:float layered_fraction_invert:boolean layered_normal:vector"),
        family("LyrexGlazingSchema", "kvor:glazing",
               gloss + shape +
                   "glazing_transmission_color:color glazing_transmission_roughness:float "
                   "glazing_f0:color glazing_backface_culling:boolean"),
    };
    return all;
}

std::string setPlain(AssetBuilder& builder, const Property& property, int position)
{
    const auto& [name, type, colorSpace] = property;
    const std::string number = std::to_string(position);
    if (type == "float")
        return builder.scalar(name, position + 0.5), number + ".5";
    if (type == "vector3")
        return builder.scalars(name, {position + 0.25, -1, 8}), number + ".25, -1, 8";
    if (type == "boolean")
        return builder.boolean(name, position % 2 == 1), position % 2 == 1 ? "true" : "false";
    builder.color(name, position + 0.125, 0.25, 0.75, 0.5);
    return number + ".125, 0.25, 0.75";
}

AssetBuilder lyrexBuilder(const std::string& schema)
{
    AssetBuilder builder(schema);
    builder.text("VersionGUID", schema);
    return builder;
}

AssetBuilder bumpBuilder(const std::string& type)
{
    AssetBuilder builder = lyrexBuilder("BumpMapSchema");
    builder.uri("bumpmap_Bitmap", "bump.png");
    if (!type.empty())
        builder.choice("bumpmap_Type", "bumpmap_" + type);
    return builder;
}

Lines linesOf(const mx::NodePtr& node)
{
    Lines lines;
    for (const mx::InputPtr& input : node ? node->getInputs() : std::vector<mx::InputPtr>())
    {
        lines.push_back(input->getName() + " " + input->getType());
        for (const char* attribute :
             {"nodegraph", "output", "value", "colorspace", "unit", "unittype"})
            if (input->hasAttribute(attribute))
                lines.back() += std::string(" ") + attribute + "=" + input->getAttribute(attribute);
    }
    return lines;
}

} // namespace vyr::materialtests
