#pragma once

#include "materials/legacy/Rows.h"

/// @file
/// What the tables of many schemas have in common.
namespace vyr::MaterialTranslation::materials::legacy
{

// What rows of many schemas say alike.
constexpr PropertyRow choiceRow(const char* name, const char* meaning, const char* effect = "",
                                const char* source = "")
{
    PropertyRow row{name, PropertyKind::Choice, meaning};
    row.effect = effect;
    row.source = source;
    return row;
}

constexpr PropertyRow shareRow(const char* name, const char* meaning, float fallback,
                               const char* effect = "")
{
    PropertyRow row{name, PropertyKind::Scalar, meaning, {fallback}};
    row.least = 0.0f;
    row.most = 1.0f;
    row.effect = effect;
    return row;
}

constexpr PropertyRow lengthRow(const char* name, const char* meaning, float metres,
                                const char* effect = "")
{
    PropertyRow row{name, PropertyKind::Scalar, meaning, {metres}, "meter"};
    row.least = 0.0f;
    row.most = 1e6f;
    row.effect = effect;
    return row;
}

constexpr PropertyRow colorRow(const char* name, const char* meaning, std::array<float, 3> linear,
                               const char* effect = "")
{
    PropertyRow row{name, PropertyKind::Color, meaning, linear};
    row.takesTexture = true;
    row.effect = effect;
    return row;
}

constexpr PropertyRow textureRow(const char* name, const char* meaning, const char* effect)
{
    PropertyRow row{name, PropertyKind::Scalar, meaning};
    row.takesTexture = true;
    row.effect = effect;
    return row;
}

constexpr PropertyRow amountRow(const char* name, const char* meaning, float fallback, float most,
                                const char* effect)
{
    PropertyRow row{name, PropertyKind::Scalar, meaning, {fallback}};
    row.least = 0.0f;
    row.most = most;
    row.effect = effect;
    return row;
}

constexpr PropertyRow countRow(const char* name, const char* meaning, float fallback, float most)
{
    PropertyRow row{name, PropertyKind::Integer, meaning, {fallback}};
    row.least = 1.0f;
    row.most = most;
    return row;
}

constexpr PropertyRow booleanRow(const char* name, const char* meaning)
{
    return {name, PropertyKind::Boolean, meaning};
}

/// A colour, its texture and fade, and the object's own colour.
inline constexpr Row colorRows[] = {
    {colorRow("color", "its colour", {0.5f, 0.5f, 0.5f}, "base_color"), &Params::base_color},
    {shareRow("color_fade", "0 switches the texture of the colour off", 1.0f), {}, Duty::Fade},
    {booleanRow(":color_by_object", "the object brings its own colour; the material is grey"),
     {},
     Duty::ColorByObject},
};

inline constexpr Row reliefRows[] = {
    {textureRow("relief", "its connected texture is the relief; the value is not used", "normal"),
     {},
     Duty::ReliefTexture},
    {amountRow("relief_amount", "strength of the relief", 1.0f, 100.0f,
               "normal_scale of the normal map"),
     {},
     Duty::ReliefAmount},
};

inline constexpr Row cutOutRows[] = {
    {textureRow("cutout", "its connected texture cuts out; the value is not used", "opacity"),
     {},
     Duty::CutOut},
};

/// Clear layers over porous materials. Acrylics and epoxies have an index of about 1.5.
inline constexpr Preset sealants[] = {
    {"none"},
    {"matte", {{&Params::coat, {0.6f}}, {&Params::coat_roughness, {0.4f}}}},
    {"glossy", {{&Params::coat, {1.0f}}, {&Params::coat_roughness, {0.05f}}}},
};

} // namespace vyr::MaterialTranslation::materials::legacy
