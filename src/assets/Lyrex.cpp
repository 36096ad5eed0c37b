#include "assets/Lyrex.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

#include <kelvor/platform/assets/UnitCode.h>

#include "assets/LyrexRows.h"
#include "base/Text.h"
#include "base/Units.h"

namespace vyr::MaterialTranslation::assets
{

namespace
{

using enum LyrexType;
using enum ColorMeaning;

constexpr const char* angle = base::angleUnitType;
constexpr const char* length = base::distanceUnitType;

/// All properties, those that several families share first.
constexpr LyrexProperty properties[] = {
    {"surface_albedo", Color},
    {"surface_roughness", Float},
    {"surface_anisotropy", Float},
    {"surface_rotation", Float, angle},
    {"surface_normal", Vector},
    {"surface_cutout", LinearColor},

    {"metal_f0", Color},

    {"opaque_albedo", Color},
    {"opaque_f0", Float},
    {"opaque_translucency", Boolean},
    {"opaque_mfp_modifier", LinearColor},
    {"opaque_mfp", Float, length},
    {"opaque_emission", Boolean},
    {"opaque_luminance", Float, base::luminanceUnitType,
     kelvor::platform::assets::eUnit_CandelaPerSquareMeter},
    {"opaque_luminance_modifier", Color},

    {"transparent_ior", Float},
    {"transparent_color", Color},
    {"transparent_distance", Float, length},

    {"layered_f0", Float},
    {"layered_roughness", Float},
    {"layered_anisotropy", Float},
    {"layered_rotation", Float, angle},
    {"layered_diffuse", Color},
    {"layered_bottom_f0", Color},
    {"layered_fraction", Float},
    {"layered_fraction_invert", Boolean},
    {"layered_normal", Vector},

    {"glazing_transmission_color", Color},
    {"glazing_transmission_roughness", Float},
    {"glazing_f0", Color},
    {"glazing_backface_culling", Boolean},
};

/// The row of a name; a name without a row does not compile.
consteval const LyrexProperty* row(std::string_view name)
{
    const auto* found = std::ranges::find(properties, name, &LyrexProperty::name);
    return found != std::end(properties) ? found : throw "a property without a row";
}

constexpr const LyrexProperty* metal[] = {
    row("metal_f0"),           row("surface_albedo"),   row("surface_roughness"),
    row("surface_anisotropy"), row("surface_rotation"), row("surface_normal"),
    row("surface_cutout"),
};

constexpr const LyrexProperty* opaque[] = {
    row("surface_normal"),      row("surface_cutout"),
    row("surface_albedo"),      row("opaque_albedo"),
    row("surface_roughness"),   row("surface_anisotropy"),
    row("surface_rotation"),    row("opaque_f0"),
    row("opaque_translucency"), row("opaque_mfp_modifier"),
    row("opaque_mfp"),          row("opaque_emission"),
    row("opaque_luminance"),    row("opaque_luminance_modifier"),
};

constexpr const LyrexProperty* transparent[] = {
    row("surface_albedo"),   row("surface_roughness"), row("surface_anisotropy"),
    row("surface_rotation"), row("surface_normal"),    row("surface_cutout"),
    row("transparent_ior"),  row("transparent_color"), row("transparent_distance"),
};

constexpr const LyrexProperty* layered[] = {
    row("surface_albedo"),   row("surface_roughness"),       row("surface_anisotropy"),
    row("surface_rotation"), row("surface_normal"),          row("surface_cutout"),
    row("layered_f0"),       row("layered_roughness"),       row("layered_anisotropy"),
    row("layered_rotation"), row("layered_diffuse"),         row("layered_bottom_f0"),
    row("layered_fraction"), row("layered_fraction_invert"), row("layered_normal"),
};

constexpr const LyrexProperty* glazing[] = {
    row("surface_albedo"),
    row("surface_roughness"),
    row("surface_anisotropy"),
    row("surface_rotation"),
    row("surface_normal"),
    row("surface_cutout"),
    row("glazing_transmission_color"),
    row("glazing_transmission_roughness"),
    row("glazing_f0"),
    row("glazing_backface_culling"),
};

constexpr LyrexFamily families[] = {
    {"LyrexMetalSchema", "kvor:metal", metal, lyrex::metalRows, lyrex::metalMeaning},
    {"LyrexOpaqueSchema", "kvor:opaque", opaque, lyrex::opaqueRows, lyrex::opaqueMeaning},
    {"LyrexTransparentSchema", "kvor:transparent", transparent, lyrex::transparentRows,
     lyrex::transparentMeaning},
    {"LyrexLayeredSchema", "kvor:layered", layered, lyrex::layeredRows, lyrex::layeredMeaning},
    {"LyrexGlazingSchema", "kvor:glazing", glazing, lyrex::glazingRows, lyrex::glazingMeaning},
};

constexpr bool isInAFamily(const LyrexProperty& property)
{
    const auto has = [&](const LyrexFamily& family)
    { return std::ranges::find(family.properties, &property) != family.properties.end(); };
    return std::ranges::any_of(families, has);
}

static_assert(std::ranges::all_of(properties, isInAFamily), "a property that no family has");

constexpr bool isDefined(const LyrexFamily& family)
{
    const auto areSame = [](const LyrexProperty* property, const PropertyRow& row)
    { return property->name == std::string_view(row.name); };
    return std::ranges::equal(family.properties, family.rows, areSame);
}

static_assert(std::ranges::all_of(families, isDefined), "not the inputs of the node's definition");

constexpr std::string_view namePrefix = "Lyrex-";

struct PresetRange
{
    int first;
    int last;
    ColorMeaning meaning;
};

// In ascending order, without overlap. Numbers outside are of neither class.
constexpr PresetRange presetRanges[] = {
    {1, 133, Display},    {134, 136, Linear},    {137, 141, Display},  {142, 143, Linear},
    {144, 180, Display},  {181, 201, Linear},    {202, 202, Display},  {203, 203, Linear},
    {204, 208, Display},  {209, 212, Linear},    {213, 237, Display},  {238, 239, Linear},
    {240, 253, Display},  {254, 254, Linear},    {255, 256, Display},  {257, 262, Linear},
    {318, 323, Display},  {334, 338, Display},   {344, 344, Display},  {350, 350, Display},
    {352, 422, Display},  {624, 624, Display},   {625, 626, Linear},   {800, 898, Linear},
    {1100, 1169, Linear}, {1170, 1172, Display}, {1173, 1188, Linear}, {2000, 2023, Display},
    {2024, 2064, Linear},
};

} // namespace

const char* typeName(LyrexType type)
{
    switch (type)
    {
    case Color:
    case LinearColor:
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
    const auto* family = std::ranges::find(families, schema, &LyrexFamily::schema);
    return family == std::end(families) ? nullptr : family;
}

ColorMeaning propertyMeaning(std::string_view property)
{
    const auto* found =
        std::ranges::find_if(properties, [&](const LyrexProperty& p)
                             { return base::equalsIgnoringCase(p.name, property); });
    if (found == std::end(properties) || found->type == Boolean)
        return Unknown;
    return found->type == Color ? Display : Linear;
}

bool hasLyrexPrefix(std::string_view name)
{
    return base::equalsIgnoringCase(name.substr(0, namePrefix.size()), namePrefix);
}

bool isLyrexName(std::string_view name)
{
    return hasLyrexPrefix(name) && name.find('_') == std::string_view::npos;
}

int lyrexNameNumber(const std::string& name)
{
    const std::string number = name.substr(name.find('-') + 1);
    // Not std::atoi, whose result for a number out of range is undefined.
    const long value = std::strtol(number.c_str(), nullptr, 10);
    return static_cast<int>(std::clamp(value, -2147483647L, 2147483647L));
}

ColorMeaning presetMeaning(int number)
{
    const auto* range = std::ranges::find_if(presetRanges, [number](const PresetRange& r)
                                             { return number >= r.first && number <= r.last; });
    return range == std::end(presetRanges) ? Unknown : range->meaning;
}

} // namespace vyr::MaterialTranslation::assets

namespace vyr::MaterialTranslation
{

const std::vector<SchemaRow>& lyrexMaterials()
{
    static const std::vector<SchemaRow> schemas = []
    {
        std::vector<SchemaRow> all;
        for (const assets::LyrexFamily& family : assets::lyrexFamilies())
            all.push_back({family.schema, family.meaning, family.rows.data(), family.rows.size()});
        return all;
    }();
    return schemas;
}

} // namespace vyr::MaterialTranslation
