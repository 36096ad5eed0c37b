#include "assets/ColorSpaces.h"

#include <algorithm>

#include <kelvor/platform/assets/PropertyType.h>

#include "assets/Asset.h"
#include "assets/Lyrex.h"
#include "base/Text.h"

namespace vyr::MaterialTranslation::assets
{

namespace
{

struct DeclarationRow
{
    const char* choice;
    const char* colorSpace;
};

// The first whose name is part of the choice's name counts.
constexpr DeclarationRow declarations[] = {
    {"colorspace_sRGB_gamma24", displayRec709},
    {"colorspace_linear", linearRec709},
};

const char* colorSpaceOf(ColorMeaning meaning)
{
    using enum ColorMeaning;
    return meaning == Display ? displayRec709 : meaning == Linear ? linearRec709 : "";
}

bool isColorOrVector(const std::string& type)
{
    return type == "color3" || type == "color4" || type == "vector3" || type == "vector4";
}

/// The texts that may name a preset, those of the material first. They are asked for only where they
/// count: an asset without "VersionGUID" is an error.
std::vector<std::string> presetNames(const ColorSpaceQuestion& question, bool sourceIsTexture,
                                     const std::string& sourceVersion)
{
    std::vector<std::string> names;
    if (sourceIsTexture)
        names = {question.material.name(), question.material[versionProperty].text()};
    names.push_back(question.source.name());
    names.push_back(sourceVersion);
    return names;
}

/// What the number of a preset says, else the property's name.
ColorMeaning namedMeaning(const ColorSpaceQuestion& question,
                          const std::vector<std::string>& presets)
{
    std::string property;
    if (question.source.hasWorkingPropertyNames())
        property = question.property;
    auto preset = std::ranges::find_if(presets, isLyrexName);
    if (preset == presets.end())
    {
        preset = std::ranges::find_if(presets, hasLyrexPrefix);
        if (preset != presets.end())
            property = suffixAfterFirstUnderscore(*preset);
    }
    const ColorMeaning meaning =
        preset == presets.end() ? ColorMeaning::Unknown : presetMeaning(lyrexNameNumber(*preset));
    return meaning == ColorMeaning::Unknown ? propertyMeaning(property) : meaning;
}

} // namespace

std::string declaredColorSpace(const Asset& asset, const Property& property, const Log& log)
{
    if (property.type() != kelvor::platform::assets::ePropertyType_Color)
        return {};
    const std::string name = property.identifier() + colorSpaceSuffix;
    const Property companion = asset[name.c_str()];
    if (!companion.isActive())
        return {};
    try
    {
        const std::vector<std::string> selected = companion.choices();
        for (const DeclarationRow& row : declarations)
            if (!selected.empty() && selected.front().find(row.choice) != std::string::npos)
                return row.colorSpace;
    }
    catch (const PropertyError&)
    {
        log.warning(DiagnosticCode::ValueAdjusted, name,
                    "no choice that can be read; the colour counts as one without a declared "
                    "colour space");
    }
    return {};
}

std::string inputColorSpace(const ColorSpaceQuestion& question, const Log& log)
{
    const Property property = question.source[question.property];
    if (std::string declared = declaredColorSpace(question.source, property, log);
        !declared.empty())
        return declared;

    const std::string version = question.source[versionProperty].text();
    const bool sourceIsTexture =
        std::ranges::any_of(lyrexTextureSchemas, [&](const char* schema)
                            { return base::equalsIgnoringCase(version, schema); });
    const bool colored = isColorOrVector(question.type);
    if (!colored && !sourceIsTexture && !question.isImage)
        return {};
    const std::vector<std::string> presets = presetNames(question, sourceIsTexture, version);
    if (question.isImage)
        return colored || question.type == "float" ? srgbTexture : "";
    return colorSpaceOf(namedMeaning(question, presets));
}

std::string suffixAfterFirstUnderscore(const std::string& text)
{
    return text.substr(text.find('_') + 1);
}

} // namespace vyr::MaterialTranslation::assets
