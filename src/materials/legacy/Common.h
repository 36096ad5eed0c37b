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

constexpr PropertyRow numberRow(const char* name, const char* meaning, float fallback, float least,
                                float most, const char* effect = "", const char* source = "")
{
    PropertyRow row{name, PropertyKind::Scalar, meaning, {fallback}};
    row.least = least;
    row.most = most;
    row.effect = effect;
    row.source = source;
    return row;
}

constexpr PropertyRow shareRow(const char* name, const char* meaning, float fallback,
                               const char* effect = "")
{
    return numberRow(name, meaning, fallback, 0.0f, 1.0f, effect);
}

constexpr PropertyRow lengthRow(const char* name, const char* meaning, float metres,
                                const char* effect = "", float least = 0.0f)
{
    PropertyRow row = numberRow(name, meaning, metres, least, 1e6f, effect);
    row.unit = "meter";
    return row;
}

/// Of what has to be there at all.
constexpr float leastLength = 1e-6f;

constexpr PropertyRow colorRow(const char* name, const char* meaning, std::array<float, 3> linear,
                               const char* effect = "")
{
    PropertyRow row{name, PropertyKind::Color, meaning, linear};
    row.takesTexture = true;
    row.effect = effect;
    return row;
}

/// A colour that no texture may drive.
constexpr PropertyRow plainColorRow(const char* name, const char* meaning,
                                    std::array<float, 3> linear, const char* effect = "")
{
    PropertyRow row = colorRow(name, meaning, linear, effect);
    row.takesTexture = false;
    return row;
}

constexpr PropertyRow textureRow(const char* name, const char* meaning, const char* effect)
{
    PropertyRow row{name, PropertyKind::Scalar, meaning};
    row.takesTexture = true;
    row.effect = effect;
    return row;
}

constexpr PropertyRow countRow(const char* name, const char* meaning, float fallback, float most,
                               const char* effect = "")
{
    PropertyRow row{name, PropertyKind::Integer, meaning, {fallback}};
    row.least = 1.0f;
    row.most = most;
    row.effect = effect;
    return row;
}

inline constexpr Row fadeRow{
    shareRow("color_fade", "0 switches the texture of the colour off", 1.0f,
             "all or nothing: documents do not blend it, which a warning says"),
    {},
    Duty::Fade};

inline constexpr Row byObjectRow{{":color_by_object", PropertyKind::Boolean,
                                  "the object brings its own colour; the material is grey"},
                                 {},
                                 Duty::ColorByObject};

/// A colour, its texture and fade, and the object's own colour.
inline constexpr Row colorRows[] = {
    {colorRow("color", "its colour", {0.5f, 0.5f, 0.5f}, "base_color"), &Params::base_color},
    fadeRow,
    byObjectRow,
};

// Reliefs by procedural textures: sizes and depths in metres, by eye.
inline constexpr Relief roughRelief{
    "NoiseSchema",
    0.4f,
    0.04f,
    0.012f,
    {{"noise_Type", {1.0f}}, {"noise_Size", {10.0f}}, {"noise_Levels", {5.0f}}}};
/// Spots of a size strewn close together, in the colours of ground and spots: heights.
constexpr Relief strewn(float size, float depth, float ground, float spots)
{
    return {"SpeckleSchema",
            0.0f,
            size,
            depth,
            {{"speckle_Size", {size}},
             {"speckle_Soften", {1.0f}},
             {"speckle_Amount", {1.0f}},
             {"speckle_Color1", {ground, ground, ground}},
             {"speckle_Color2", {spots, spots, spots}}}};
}
inline constexpr Relief dimpledRelief = strewn(0.015f, 0.002f, 1.0f, 0.0f);
inline constexpr Relief pebbledRelief = strewn(0.004f, 0.0008f, 0.0f, 1.0f);
inline constexpr Relief wavedRelief{
    "WaveSchema",
    0.0f,
    0.1f,
    0.01f,
    {{"wave_Sources", {8.0f}}, {"wave_Length", {0.1f}}, {"wave_LengthVariation", {0.5f}}}};
inline constexpr Relief ribbedRelief{
    "GradientSchema",
    0.1f,
    0.01f,
    0.003f,
    {{"gradient_Type", {2.0f}}, {"gradient_Repeats", {10.0f}}, {"gradient_Alternates", {1.0f}}}};
inline constexpr Relief cushionedRelief{
    "GradientSchema", 0.01f, 0.01f, 0.0025f, {{"gradient_Type", {11.0f}}}};
/// Pyramids: tiles without joints whose slopes meet in the middle.
constexpr Relief pyramids(float size, float depth)
{
    return {"TileSchema",
            0.0f,
            size,
            depth,
            {{"tile_Width", {size}},
             {"tile_Height", {size}},
             {"tile_JointWidth", {0.0f}},
             {"tile_Bevel", {size * 0.5f}}}};
}
inline constexpr Relief facetedRelief = pyramids(0.01f, 0.003f);
/// Streaks upwards, as a tool or brush leaves them: the rings of a plank without their bends.
constexpr Relief streaks(float width, float depth, float bends)
{
    return {"WoodSchema",
            0.0f,
            width,
            depth,
            {{"wood_RingWidth", {width}},
             {"wood_RadialNoise", {bends}},
             {"wood_AxialNoise", {0.0f}},
             {"wood_Fibres", {1.0f}},
             {"wood_Color1", {0.0f, 0.0f, 0.0f}},
             {"wood_Color2", {1.0f, 1.0f, 1.0f}}}};
}

inline constexpr Preset reliefPatterns[] = {
    {"none"},
    {"rough", {}, &roughRelief},
    {"dimpled", {}, &dimpledRelief},
    {"pebbled", {}, &pebbledRelief},
    {"waved", {}, &wavedRelief},
    {"ribbed", {}, &ribbedRelief},
    {"cushioned", {}, &cushionedRelief},
    {"faceted", {}, &facetedRelief},
};

/// In the order in which one relief wins over the next; those of finishes and bonds stand in other rows.
inline constexpr Row reliefRows[] = {
    {textureRow("relief", "its connected texture is the relief; the value is not used",
                "normal, in place of any other relief"),
     {},
     Duty::ReliefTexture},
    {choiceRow("relief_pattern", "relief by a pattern",
               "normal, in place of the relief of a finish or type"),
     {},
     Duty::None,
     reliefPatterns},
    {numberRow("relief_amount", "strength of the relief; 1: of a choice as it is", 1.0f, 0.0f,
               100.0f, "normal_scale of the normal map"),
     {},
     Duty::ReliefAmount},
    {lengthRow("relief_size",
               "of the ribs, dimples or waves of a relief that a choice makes; without it that of "
               "its kind",
               0.01f, "realworld_scale of the normal map", leastLength),
     {},
     Duty::ReliefSize},
};

inline constexpr Row cutOutRows[] = {
    {textureRow("cutout", "its connected texture cuts out; the value is not used", "opacity"),
     {},
     Duty::CutOut},
};

/// Clear layers. Acrylics and epoxies have an index of about 1.5, the shader's own.
inline constexpr Preset sealants[] = {
    {"none"},
    {"matte", {{&Params::coat, {0.6f}}, {&Params::coat_roughness, {0.4f}}}},
    {"glossy", {{&Params::coat, {1.0f}}, {&Params::coat_roughness, {0.05f}}}},
};

constexpr PropertyRow sealantRow(const char* name, const char* meaning)
{
    return choiceRow(name, meaning, "coat and coat_roughness; index 1.5 of acrylic and epoxy",
                     "CRC Handbook (not opened here)");
}

} // namespace vyr::MaterialTranslation::materials::legacy
