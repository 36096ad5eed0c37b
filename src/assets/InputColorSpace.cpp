#include "assets/InputColorSpace.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "assets/PropertyReaders.h"
#include "assets/Schemas.h"
#include "assets/Units.h"
#include "base/Text.h"

namespace vyr::MaterialTranslation::assets
{

namespace
{

using enum ColorMeaning;

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

struct PropertyRow
{
    const char* name;
    ColorMeaning meaning;
};

constexpr PropertyRow propertyMap[] = {
    {"surface_albedo", Display},
    {"opaque_albedo", Display},
    {"opaque_luminance_modifier", Display},
    {"metal_f0", Display},
    {"transparent_color", Display},
    {"layered_bottom_f0", Display},
    {"layered_diffuse", Display},
    {"glazing_transmission_color", Display},
    {"glazing_f0", Display},
    {"surface_cutout", Linear},
    {"surface_roughness", Linear},
    {"surface_anisotropy", Linear},
    {"surface_rotation", Linear},
    {"surface_normal", Linear},
    {"opaque_f0", Linear},
    {"opaque_mfp", Linear},
    {"opaque_mfp_modifier", Linear},
    {"opaque_luminance", Linear},
    {"transparent_ior", Linear},
    {"transparent_distance", Linear},
    {"layered_f0", Linear},
    {"layered_fraction", Linear},
    {"layered_roughness", Linear},
    {"layered_anisotropy", Linear},
    {"layered_rotation", Linear},
    {"layered_normal", Linear},
    {"glazing_transmission_roughness", Linear},
};

const char* colorSpaceOf(ColorMeaning meaning)
{
    return meaning == Display ? displayRec709 : meaning == Linear ? linearRec709 : "";
}

bool isColorOrVector(const std::string& type)
{
    return type == "color3" || type == "color4" || type == "vector3" || type == "vector4";
}

/// The preset that the names of the material and of the source tell, and the property that they
/// speak of.
struct NamedMeaning
{
    ColorMeaning preset = Unknown;
    std::string property;
};

NamedMeaning namedMeaning(const ColorSpaceQuestion& question, bool sourceIsTexture,
                          const std::string& sourceVersion)
{
    std::array<std::string, 4> names;
    if (sourceIsTexture)
    {
        names[0] = GetAssetName(question.material.asset());
        names[1] = GetTextProperty(question.material, versionProperty);
    }
    names[2] = GetAssetName(question.source.asset());
    names[3] = sourceVersion;

    NamedMeaning result;
    if (question.source.asset().HasWorkingPropertyNames())
        result.property = question.property;

    const auto preset = std::ranges::find_if(names, IsLyrexName);
    if (preset != names.end())
    {
        result.preset = presetMeaning(LyrexNameNumber(*preset));
        return result;
    }
    const auto qualified = std::ranges::find_if(names, HasLyrexPrefix);
    if (qualified != names.end())
    {
        result.preset = presetMeaning(LyrexNameNumber(*qualified));
        result.property = SuffixAfterFirstUnderscore(*qualified);
    }
    return result;
}

} // namespace

ColorMeaning presetMeaning(long long number)
{
    const auto* range = std::ranges::find_if(presetRanges, [number](const auto& r)
                                             { return number >= r.first && number <= r.last; });
    return range == std::end(presetRanges) ? Unknown : range->meaning;
}

ColorMeaning propertyMeaning(const std::string& property)
{
    const auto* row = std::ranges::find_if(propertyMap, [&](const PropertyRow& r)
                                           { return base::equalsIgnoringCase(r.name, property); });
    return row == std::end(propertyMap) ? Unknown : row->meaning;
}

std::string inputColorSpace(const ColorSpaceQuestion& question)
{
    const std::string declared = GetPropertyColorSpace(question.source, question.property);
    if (declaresGamma24(declared))
        return displayRec709;
    if (declaresLinear(declared))
        return linearRec709;

    const std::string version = GetTextProperty(question.source, versionProperty);
    const bool sourceIsTexture = base::equalsIgnoringCase(version, bitmapSchema) ||
                                 base::equalsIgnoringCase(version, bumpMapSchema);
    const bool colored = isColorOrVector(question.type);
    if (!colored && !sourceIsTexture && !question.isImage)
        return {};
    if (question.isImage)
        return colored || question.type == "float" ? srgbTexture : "";

    const NamedMeaning named = namedMeaning(question, sourceIsTexture, version);
    return colorSpaceOf(named.preset == Unknown ? propertyMeaning(named.property) : named.preset);
}

} // namespace vyr::MaterialTranslation::assets
