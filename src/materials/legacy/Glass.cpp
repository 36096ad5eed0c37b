#include <algorithm>
#include <cmath>

#include "materials/legacy/Common.h"

namespace vyr::MaterialTranslation::materials::legacy
{

namespace
{

/// Absorption of pure water in 1/m at 620, 550 and 450 nm: Pope and Fry, Applied Optics 36 (1997), table 3 (not opened
/// here).
constexpr float waterAbsorption[3] = {0.2755f, 0.0565f, 0.0092f};

// Soda-lime glass has an index of 1.52 at 589 nm (Schott, data sheets; not opened here). Tints are of a pane of 6 mm,
// by appearance.
constexpr Assignment pane[] = {{&Params::transmission, {1.0f}},
                               {&Params::base_color, {1.0f, 1.0f, 1.0f}},
                               {&Params::specular_roughness, {0.0f}},
                               {&Params::thin_walled, {1.0f}}};
constexpr Assignment block[] = {{&Params::transmission, {1.0f}},
                                {&Params::base_color, {1.0f, 1.0f, 1.0f}},
                                {&Params::specular_roughness, {0.0f}}};

constexpr Preset tints[] = {
    {"clear", {{&Params::transmission_color, {0.97f, 0.98f, 0.97f}}}},
    {"green", {{&Params::transmission_color, {0.66f, 0.85f, 0.7f}}}},
    {"grey", {{&Params::transmission_color, {0.42f, 0.43f, 0.44f}}}},
    {"blue", {{&Params::transmission_color, {0.4f, 0.58f, 0.75f}}}},
    {"bluegreen", {{&Params::transmission_color, {0.45f, 0.72f, 0.7f}}}},
    {"bronze", {{&Params::transmission_color, {0.55f, 0.44f, 0.33f}}}},
    {"custom"},
};

Params::Color toPower(Params::Color color, float exponent)
{
    for (float& channel : color)
        channel = static_cast<float>(
            std::pow(static_cast<double>(std::max(channel, 0.0f)), static_cast<double>(exponent)));
    return color;
}

/// What comes back of one surface, by its index of refraction.
float reflectanceOfIndex(float index)
{
    const float root = (index - 1.0f) / (index + 1.0f);
    return root * root;
}

constexpr Preset forms[] = {{"thin", {{&Params::thin_walled, {1.0f}}}},
                            {"solid", {{&Params::thin_walled, {0.0f}}}}};

constexpr Row tintRow{choiceRow("tint", "of the glass; custom, or no tint but a colour: the colour",
                                "transmission_color"),
                      {},
                      Duty::NamesColor,
                      tints};

constexpr Row glassRoughnessRow{
    shareRow("roughness", "0 clear, 1 frosted", 0.0f, "specular_roughness"),
    &Params::specular_roughness};

/// Of n sheets that reflect the share R and absorb nothing, n R / (1 + (n - 1) R) comes back: Stokes' pile of plates.
/// A sheet is itself a pile of two surfaces. What is absorbed grows with the glass on the way.
void stackPanes(Params& params, const LegacyValues& values)
{
    const auto pile = [](float count, float reflectance)
    { return count * reflectance / (1.0f + (count - 1.0f) * reflectance); };
    const float index = values.number("index");
    const float sheets = values.number("sheets");
    params.transmission_color =
        toPower(params.transmission_color, sheets * values.number("thickness") / 0.006f);
    const bool isGiven = values.isGiven("reflectance");
    params.specular_IOR = index;
    if (params.thin_walled || isGiven)
        params.specular_IOR =
            indexOfReflectance(pile(sheets, isGiven ? values.number("reflectance")
                                                    : pile(2.0f, reflectanceOfIndex(index))));
}

constexpr Row glazingOwn[] = {
    tintRow,
    {colorRow("color", "of the light that passes 6 mm of glass", {0.9f, 0.9f, 0.9f},
              "transmission_color"),
     &Params::transmission_color, Duty::Otherwise},
    fadeRow,
    {choiceRow("form", "thin: one surface stands for the pane; solid: the pane has two",
               "thin_walled"),
     {},
     Duty::None,
     forms},
    {numberRow("reflectance", "of one sheet, at normal incidence; without it that of the index",
               0.0817f, 0.0f, highestReflectance,
               "specular_IOR of all sheets: Stokes' pile of plates, Fresnel's formula",
               "two surfaces of index 1.52 reflect 0.0817")},
    {numberRow("index", "index of refraction of the glass", 1.52f, 1.0f, 10.0f, "specular_IOR",
               "soda-lime glass at 589 nm: 1.52 (Schott, data sheets; not opened here)")},
    {countRow("sheets", "how many", 1.0f, 10.0f, "they reflect more, and absorb more")},
    {lengthRow(
        "thickness", "of a sheet", 0.006f,
        "transmission_color is the tint to the power of thickness / 6 mm (Beer and Lambert)")},
    glassRoughnessRow,
};

constexpr Preset indices[] = {
    {"glass", {{&Params::specular_IOR, {1.52f}}}},
    {"air", {{&Params::specular_IOR, {1.0f}}}},
    {"water", {{&Params::specular_IOR, {1.333f}}}},
    {"alcohol", {{&Params::specular_IOR, {1.361f}}}},
    {"quartz", {{&Params::specular_IOR, {1.458f}}}},
    {"acrylic", {{&Params::specular_IOR, {1.49f}}}},
    {"crystal", {{&Params::specular_IOR, {1.6f}}}},
    {"diamond", {{&Params::specular_IOR, {2.417f}}}},
    {"custom"},
};

constexpr Row solidGlassOwn[] = {
    tintRow,
    {colorRow("color", "of the light that passes 6 mm of glass", {0.9f, 0.9f, 0.9f},
              "transmission_color"),
     &Params::transmission_color, Duty::Otherwise},
    fadeRow,
    {choiceRow("refraction", "what it refracts like; custom: the index", "specular_IOR",
               "indices at 589 nm, CRC Handbook (not opened here)"),
     {},
     Duty::None,
     indices},
    {numberRow("index", "index of refraction; given, it counts in place of refraction", 1.52f, 1.0f,
               10.0f, "specular_IOR")},
    {numberRow(":glazing_reflectance",
               "at normal incidence; given, it counts in place of index and refraction", 0.0426f,
               0.0f, highestReflectance, "specular_IOR by Fresnel's formula",
               "a surface of index 1.52 reflects 0.0426")},
    {lengthRow("depth", "of the glass", 0.006f,
               "transmission_color is the tint to the power of depth / 6 mm (Beer and Lambert)")},
    glassRoughnessRow,
};

void fillGlass(Params& params, const LegacyValues& values)
{
    params.transmission_color = toPower(params.transmission_color, values.number("depth") / 0.006f);
    if (values.isGiven("index") || values.choice("refraction") == placeOf(indices, "custom"))
        params.specular_IOR = values.number("index");
    if (values.isGiven(":glazing_reflectance"))
        params.specular_IOR = indexOfReflectance(values.number(":glazing_reflectance"));
}

/// Straight waves that run much the same way, as under wind.
constexpr Relief waves(float length, float depth, float sources, float variation)
{
    return {"WaveSchema",
            0.0f,
            length,
            depth,
            {{"wave_Type", {1.0f}},
             {"wave_Sources", {sources}},
             {"wave_Length", {length}},
             {"wave_LengthVariation", {variation}}}};
}
constexpr Relief ripples = waves(0.2f, 0.022f, 12.0f, 0.5f);
constexpr Relief stillness = waves(0.5f, 0.015f, 8.0f, 0.4f);
constexpr Relief current = waves(0.3f, 0.04f, 12.0f, 0.7f);
constexpr Relief swell = waves(4.0f, 0.9f, 24.0f, 0.75f);
/// As insects and falling leaves draw them.
constexpr Relief rings{
    "WaveSchema", 0.0f, 0.12f, 0.01f, {{"wave_Sources", {3.0f}}, {"wave_Length", {0.12f}}}};

// What the bottom sends back and what the water leaves of the light, linear: appearance, not measurement.
constexpr Preset waters[] = {
    {"swimming_pool",
     {{&Params::base_color, {0.055f, 0.396f, 0.551f}},
      {&Params::transmission_color, {0.455f, 0.84f, 0.907f}}},
     &ripples},
    {"reflecting_pool",
     {{&Params::base_color, {0.001f, 0.002f, 0.002f}},
      {&Params::transmission_color, {0.238f, 0.356f, 0.369f}}},
     &stillness},
    {"stream",
     {{&Params::base_color, {0.05f, 0.06f, 0.035f}},
      {&Params::transmission_color, {0.62f, 0.72f, 0.58f}}},
     &current},
    {"pond",
     {{&Params::base_color, {0.025f, 0.04f, 0.015f}},
      {&Params::transmission_color, {0.35f, 0.45f, 0.22f}}},
     &rings},
    {"sea",
     {{&Params::base_color, {0.004f, 0.02f, 0.035f}},
      {&Params::transmission_color, {0.1f, 0.33f, 0.45f}}},
     &swell},
    {"custom"},
};

// At 20 degrees Celsius, 589 nm: 1.333 (IAPWS release on the refractive index of water, 1997; not opened here).
constexpr Assignment liquid[] = {{&Params::specular_IOR, {waterIndex}},
                                 {&Params::specular_roughness, {0.0f}},
                                 {&Params::transmission, {0.9f}}};

constexpr Row waterOwn[] = {
    {choiceRow("type", "where it stands; custom, or no type but a colour: the colour",
               "base_color, transmission_color and waves",
               "index 1.333 at 20 degrees Celsius, 589 nm (IAPWS, 1997; not opened here); colours "
               "by appearance"),
     {},
     Duty::NamesColor,
     waters},
    {colorRow("color", "its own colour", {0.05f, 0.2f, 0.25f}, "base_color, transmission_color"),
     &Params::base_color, Duty::Otherwise},
    fadeRow,
    {[]
     {
         PropertyRow row = lengthRow(
             "depth", "down to the ground; what the water itself takes of the light on the way",
             0.0f, "transmission_color times exp(-a depth), a 0.2755, 0.0565 and 0.0092 per metre");
         row.source = "Pope and Fry, Applied Optics 36 (1997), table 3 (not opened here)";
         return row;
     }()},
};

void fillWater(Params& params, const LegacyValues& values)
{
    if (values.choice("type") == placeOf(waters, "custom"))
        params.transmission_color = params.base_color;
    for (std::size_t i = 0; i < 3; ++i)
        params.transmission_color[i] *= static_cast<float>(
            std::exp(-static_cast<double>(waterAbsorption[i] * values.number("depth"))));
}

// Evaporated aluminium behind glass: Real-Time Rendering, 4th edition, table 9.2 (not opened here).
constexpr Assignment silvered[] = {{&Params::metalness, {1.0f}},
                                   {&Params::specular_roughness, {0.0f}}};

constexpr Preset backings[] = {
    {"aluminum", {{&Params::base_color, {0.913f, 0.922f, 0.924f}}}},
    {"silver", {{&Params::base_color, {0.972f, 0.96f, 0.915f}}}},
    {"antique",
     {{&Params::base_color, {0.6f, 0.57f, 0.5f}}, {&Params::specular_roughness, {0.12f}}}},
};

constexpr Row mirrorOwn[] = {
    {colorRow("color", "its tint", {0.913f, 0.922f, 0.924f}, "base_color"), &Params::base_color},
    fadeRow,
    {choiceRow("type", "metal behind the glass",
               "base_color; a colour that is given counts instead",
               "Real-Time Rendering, 4th edition, table 9.2 (not opened here)"),
     {},
     Duty::None,
     backings},
    {shareRow("roughness", "0 clear, 1 blind", 0.0f, "specular_roughness"),
     &Params::specular_roughness},
    {shareRow("tarnish", "share that is tarnished, in patches", 0.0f,
              "base_color turns dark brown, specular_roughness 0.5"),
     {},
     Duty::Patches},
};

void tarnish(Params& params, const LegacyValues& values)
{
    const float share = values.number("tarnish");
    params.base_color =
        params.base_color * (1.0f - share) + Params::Color(0.1f, 0.08f, 0.06f) * share;
    params.specular_roughness += (0.5f - params.specular_roughness) * share;
}

constexpr Schema glazing{"GlazingSchema",
                         "glazing",
                         "panes of glass, one or several, thin",
                         {glazingOwn, reliefRows, cutOutRows},
                         pane,
                         nullptr,
                         stackPanes};
constexpr Schema solidGlass{"SolidGlassSchema",
                            "solidglass",
                            "glass that is solid through and through",
                            {solidGlassOwn, reliefRows, cutOutRows},
                            block,
                            nullptr,
                            fillGlass};
constexpr Schema water{
    "WaterSchema", "water",  "water, by where it stands", {waterOwn, reliefRows}, liquid,
    nullptr,       fillWater};
constexpr Schema mirror{"MirrorSchema", "mirror", "mirrors", {mirrorOwn, reliefRows, cutOutRows},
                        silvered,       nullptr,  tarnish};

constexpr const Schema* all[] = {&glazing, &solidGlass, &water, &mirror};

} // namespace

float indexOfReflectance(float reflectance)
{
    const float root = std::sqrt(std::min(reflectance, highestReflectance));
    return (1.0f + root) / (1.0f - root);
}

std::optional<WaterColors> waterColors(const std::string& choice)
{
    const auto* found =
        std::ranges::find_if(waters, [&](const Preset& preset)
                             { return "water_" + std::string(preset.name) == choice; });
    if (found == std::end(waters) || std::holds_alternative<std::monostate>(found->sets[0].field))
        return std::nullopt;
    const auto& [base, transmission] = std::tie(found->sets[0].value, found->sets[1].value);
    return WaterColors{{base[0], base[1], base[2]},
                       {transmission[0], transmission[1], transmission[2]}};
}

constinit const std::span<const Schema* const> glassSchemas{all};

} // namespace vyr::MaterialTranslation::materials::legacy
