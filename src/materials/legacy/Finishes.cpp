#include <algorithm>
#include <cmath>

#include "materials/legacy/Common.h"

namespace vyr::MaterialTranslation::materials::legacy
{

namespace
{

// Alkyd and acrylic binders: 1.49 to 1.53 (manufacturers' tables, not opened here).
constexpr Assignment binder[] = {{&Params::specular_IOR, {1.5f}}};

constexpr Relief rolled{"NoiseSchema",
                        0.2f,
                        0.004f,
                        0.0008f,
                        {{"noise_Type", {1.0f}}, {"noise_Size", {2.0f}}, {"noise_Levels", {2.0f}}}};
constexpr Relief brushed = streaks(0.004f, 0.00015f, 1.0f);

constexpr Preset paintFinishes[] = {
    {"flat", {{&Params::specular_roughness, {0.9f}}, {&Params::diffuse_roughness, {0.5f}}}},
    {"eggshell", {{&Params::specular_roughness, {0.65f}}, {&Params::diffuse_roughness, {0.3f}}}},
    {"pearl", {{&Params::specular_roughness, {0.5f}}}},
    {"semigloss", {{&Params::specular_roughness, {0.3f}}}},
    {"gloss", {{&Params::specular_roughness, {0.1f}}}},
};

constexpr Preset applications[] = {{"spray"}, {"roller", {}, &rolled}, {"brush", {}, &brushed}};

constexpr Row wallPaintOwn[] = {
    {choiceRow(
         "finish", "sheen of the paint",
         "specular_roughness, falling from flat to gloss; flat paints scatter more of the light "
         "back (diffuse_roughness)",
         "order of the gloss classes of ASTM D523 and MPI (not opened here); figures by eye"),
     {},
     Duty::None,
     paintFinishes},
    {choiceRow(
         "application", "how it was put on",
         "normal: none when sprayed, orange peel of 4 mm by roller, streaks of 4 mm by brush"),
     {},
     Duty::None,
     applications},
};

constexpr Preset plasticTypes[] = {
    {"solid", {{&Params::specular_IOR, {1.5f}}}},
    {"transparent", {{&Params::transmission, {1.0f}}, {&Params::specular_IOR, {1.49f}}}},
    {"vinyl", {{&Params::specular_IOR, {1.53f}}}},
};

constexpr Preset plasticFinishes[] = {
    {"polished", {{&Params::specular_roughness, {0.04f}}}},
    {"glossy", {{&Params::specular_roughness, {0.15f}}}},
    {"matte", {{&Params::specular_roughness, {0.55f}}, {&Params::diffuse_roughness, {0.2f}}}},
};

constexpr Row plasticOwn[] = {
    {choiceRow("type", "solid or transparent plastic, or vinyl", "transmission, specular_IOR",
               "acrylic 1.49, PVC 1.53 (CRC Handbook, not opened here)"),
     {},
     Duty::None,
     plasticTypes},
    {choiceRow("finish", "of the surface", "specular_roughness, rising to matte"),
     {},
     Duty::None,
     plasticFinishes},
};

/// The light that passes has the colour.
void colorTransparent(Params& params, const LegacyValues& values)
{
    constexpr std::size_t transparent = 1;
    if (values.choice("type") == transparent)
        params.transmission_color = params.base_color;
}

constexpr Assignment wood[] = {{&Params::specular_IOR, {1.5f}},
                               {&Params::base_color, {0.3f, 0.17f, 0.08f}}};

constexpr Preset woodFinishes[] = {
    {"gloss",
     {{&Params::specular_roughness, {0.4f}},
      {&Params::coat, {1.0f}},
      {&Params::coat_roughness, {0.05f}}}},
    {"semigloss",
     {{&Params::specular_roughness, {0.4f}},
      {&Params::coat, {1.0f}},
      {&Params::coat_roughness, {0.2f}}}},
    {"satin",
     {{&Params::specular_roughness, {0.45f}},
      {&Params::coat, {0.6f}},
      {&Params::coat_roughness, {0.4f}}}},
    {"unfinished", {{&Params::specular_roughness, {0.75f}}, {&Params::diffuse_roughness, {0.3f}}}},
};

constexpr Preset uses[] = {
    {"furniture", {}},
    {"flooring", {{&Params::diffuse_roughness, {0.15f}}}},
};

constexpr Preset grains[] = {
    {"none"},
    {"plank"},
    {"end", {}, nullptr, {{"wood_RadialNoise", {0.6f}}}},
};

constexpr Preset stains[] = {{"no_stain"}, {"color_choice"}};

/// Stains plain wood as the graph of stained textures does: an overlay blend, by half, and the stain over it, by half.
void stain(Params& params, const LegacyValues& values)
{
    constexpr const char* tint = ":hardwood_tint_color";
    if (values.choice(":hardwood_tint_enabled") != placeOf(stains, "color_choice") ||
        !values.isGiven(tint))
        return;
    for (std::size_t i = 0; i < 3; ++i)
    {
        const float s = params.base_color[i];
        const float t = values.color(tint)[i];
        const float o = s >= 0.5f ? 1.0f - 2.0f * (1.0f - s) * (1.0f - t) : 2.0f * s * t;
        params.base_color[i] = (s + o) * 0.5f * (1.0f + t) * 0.5f;
    }
}

constexpr Row hardwoodOwn[] = {
    {choiceRow(":hardwood_tint_enabled", "whether the wood is stained"), {}, Duty::None, stains},
    {plainColorRow(":hardwood_tint_color", "of the stain; none without it", {1.0f, 1.0f, 1.0f},
                   "overlaid on base_color, plain or textured")},
    {choiceRow("finish", "varnish over the wood",
               "coat and coat_roughness; specular_roughness of the wood below",
               "lacquers have an index of about 1.5 (manufacturers' tables, not opened here)"),
     {},
     Duty::None,
     woodFinishes},
    {choiceRow("application", "what it is used for", "diffuse_roughness: floors are worn a little"),
     {},
     Duty::None,
     uses},
    {choiceRow("grain",
               "growth rings, from the colour to late_color, along a plank or across its end",
               "base_color and normal, by the pattern WoodSchema"),
     {},
     Duty::None,
     grains,
     "wood_Type"},
    {colorRow("late_color", "of the late wood of the grain", {0.18f, 0.08f, 0.03f}),
     {},
     Duty::None,
     {},
     "wood_Color2"},
    {lengthRow("ring_width", "of a growth ring", 0.01f, "", leastLength),
     {},
     Duty::None,
     {},
     "wood_RingWidth"},
    {shareRow("fibres", "how much the fibres show", 0.3f), {}, Duty::None, {}, "wood_Fibres"},
};

constexpr Pattern rings{"WoodSchema",  "grain", {"wood_Type"},
                        "wood_Color1", 0.0003f, {"base_color", "normal"}};

constexpr Schema wallPaint{"WallPaintSchema",
                           "wallpaint",
                           "paint on walls",
                           {colorRows, wallPaintOwn, reliefRows},
                           binder};
constexpr Schema plasticVinyl{"PlasticVinylSchema",
                              "plasticvinyl",
                              "plastics and vinyl",
                              {colorRows, plasticOwn, reliefRows, cutOutRows},
                              binder,
                              nullptr,
                              colorTransparent};
constexpr Schema hardwood{"HardwoodSchema",
                          "hardwood",
                          "wood, stained and varnished",
                          {colorRows, hardwoodOwn, reliefRows},
                          wood,
                          &rings,
                          stain};

constexpr const Schema* all[] = {&wallPaint, &plasticVinyl, &hardwood};

} // namespace

constinit const std::span<const Schema* const> finishSchemas{all};

} // namespace vyr::MaterialTranslation::materials::legacy
