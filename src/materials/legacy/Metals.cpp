#include <algorithm>
#include <cmath>

#include "materials/legacy/Common.h"

namespace vyr::MaterialTranslation::materials::legacy
{

namespace
{

constexpr Assignment bare[] = {{&Params::metalness, {1.0f}},
                               {&Params::base_color, {0.6f, 0.6f, 0.6f}}};

constexpr Assignment of(std::array<float, 3> reflectance)
{
    return {&Params::base_color, reflectance};
}

// Reflectances at normal incidence, linear Rec.709: Real-Time Rendering, 4th edition, table 9.2 (not opened here);
// stainless steel, bronze and anodised aluminium by appearance.
constexpr Preset metals[] = {
    {"aluminum", {of({0.913f, 0.922f, 0.924f})}},
    {"anodized", {}},
    {"brass", {of({0.91f, 0.778f, 0.423f})}},
    {"bronze", {of({0.8f, 0.59f, 0.35f})}},
    {"chrome", {of({0.549f, 0.556f, 0.554f})}},
    {"copper", {of({0.955f, 0.638f, 0.538f})}},
    {"gold", {of({1.0f, 0.782f, 0.344f})}},
    {"iron", {of({0.562f, 0.565f, 0.578f})}},
    {"nickel", {of({0.66f, 0.609f, 0.526f})}},
    {"platinum", {of({0.673f, 0.637f, 0.585f})}},
    {"silver", {of({0.972f, 0.96f, 0.915f})}},
    {"stainless_steel", {of({0.58f, 0.57f, 0.55f})}},
    {"titanium", {of({0.542f, 0.497f, 0.449f})}},
    {"zinc", {of({0.664f, 0.824f, 0.85f})}},
    {"custom", {}},
};

constexpr Relief knurled = pyramids(0.002f, 0.0008f);
constexpr Relief brushed = streaks(0.001f, 0.000012f, 1.0f);
constexpr Preset metalFinishes[] = {
    {"polished", {{&Params::specular_roughness, {0.03f}}}},
    {"semipolished", {{&Params::specular_roughness, {0.15f}}}},
    {"satin", {{&Params::specular_roughness, {0.3f}}}},
    {"brushed",
     {{&Params::specular_roughness, {0.3f}}, {&Params::specular_anisotropy, {0.8f}}},
     &brushed},
    {"matte", {{&Params::specular_roughness, {0.5f}}}},
    {"knurled", {{&Params::specular_roughness, {0.15f}}}, &knurled},
    {"hammered", {{&Params::specular_roughness, {0.15f}}}, &dimpledRelief},
};

constexpr Preset perforations[] = {{"none"}, {"stack"}, {"running"}};

constexpr Row metalOwn[] = {
    {choiceRow(
         "type", "which metal; anodized and custom, or no type but a colour: the colour",
         "base_color, the reflectance at normal incidence",
         "Real-Time Rendering, 4th edition, table 9.2 (not opened here); anodized, bronze and "
         "stainless steel by appearance"),
     {},
     Duty::NamesColor,
     metals},
    {colorRow("color", "of anodised aluminium, or the custom metal's reflectance",
              {0.6f, 0.6f, 0.6f}, "base_color"),
     &Params::base_color, Duty::Otherwise},
    fadeRow,
    byObjectRow,
    {choiceRow(
         "finish", "how it was worked",
         "specular_roughness, specular_anisotropy of brushed metal, relief of brushed, knurled and "
         "hammered metal",
         "figures by eye"),
     {},
     Duty::None,
     metalFinishes},
    {sealantRow("coat", "lacquer over the metal"), {}, Duty::None, sealants},
    {shareRow("patina", "share that is covered, in patches", 0.0f,
              "base_color, metalness and specular_roughness: a rough green crust on copper, brass "
              "and bronze, a dull grey one on others"),
     {},
     Duty::Patches},
    {choiceRow("perforation",
               "rows of holes, straight or staggered; without it, but with another property of the "
               "holes: "
               "straight",
               "opacity, by the pattern TileSchema"),
     {},
     Duty::None,
     perforations,
     "tile_Bond"},
    {lengthRow("hole_width", "of a hole", 0.006f, "", leastLength),
     {},
     Duty::None,
     {},
     "tile_Width"},
    {lengthRow("hole_height", "of a hole", 0.006f, "", leastLength),
     {},
     Duty::None,
     {},
     "tile_Height"},
    {lengthRow("hole_distance", "of metal between holes", 0.006f),
     {},
     Duty::None,
     {},
     "tile_JointWidth"},
    {shareRow("hole_rounding", "0 square, 1 round", 1.0f), {}, Duty::None, {}, "tile_Rounding"},
};

constexpr Pattern holes{
    "TileSchema",
    "perforation",
    {"tile_Bond"},
    nullptr,
    0.0f,
    {"opacity", nullptr},
    {{"tile_Color", {0.0f, 0.0f, 0.0f}}, {"tile_JointColor", {1.0f, 1.0f, 1.0f}}}};

void coverMetal(Params& params, const LegacyValues& values)
{
    const std::size_t type = values.choice("type");
    const float patina = values.number("patina");
    const bool hasCopper = type == placeOf(metals, "brass") || type == placeOf(metals, "bronze") ||
                           type == placeOf(metals, "copper");
    const Params::Color crust =
        hasCopper ? Params::Color(0.1f, 0.31f, 0.24f) : Params::Color(0.2f, 0.2f, 0.2f);
    params.base_color = params.base_color * (1.0f - patina) + crust * patina;
    params.metalness = 1.0f - patina;
    params.specular_roughness += (0.85f - params.specular_roughness) * patina;
}

constexpr Preset lacquers[] = {
    {"glossy", {{&Params::coat_roughness, {0.02f}}}},
    {"satin", {{&Params::coat_roughness, {0.2f}}}},
    {"matte", {{&Params::coat_roughness, {0.45f}}}},
};

// Lacquers of acrylic and polyurethane: 1.49 to 1.5.
constexpr Assignment lacquered[] = {{&Params::specular, {1.0f}},
                                    {&Params::coat, {1.0f}},
                                    {&Params::coat_IOR, {1.5f}},
                                    {&Params::specular_roughness, {0.35f}}};

constexpr Row metallicPaintOwn[] = {
    {colorRow("color", "of the paint", {0.5f, 0.5f, 0.5f}, "base_color"), &Params::base_color,
     Duty::Otherwise},
    fadeRow,
    byObjectRow,
    {choiceRow("finish", "of the clear lacquer", "coat_roughness"), {}, Duty::None, lacquers},
    {shareRow("flakes", "share of the surface that is metal flakes", 0.6f, "metalness"),
     &Params::metalness},
    {shareRow("flake_roughness", "how far flakes lie from flat", 0.35f, "specular_roughness"),
     &Params::specular_roughness},
    {[]
     {
         PropertyRow row =
             choiceRow(":metal_type", "metal of the flakes; anodized and custom: the colour",
                       "base_color", "as of MetalSchema");
         row.fallback = {static_cast<float>(placeOf(metals, "custom"))};
         return row;
     }(),
     {},
     Duty::NamesColor,
     metals},
    {lengthRow("flake_size", "of the largest flakes that are seen; 0, or without it: none is",
               0.0005f, "base_color, by the pattern SpeckleSchema"),
     {},
     Duty::None,
     {},
     "speckle_Size"},
    {plainColorRow("flake_color", "of flakes that are seen", {0.9f, 0.9f, 0.9f}),
     {},
     Duty::None,
     {},
     "speckle_Color2"},
    {shareRow("pearl", "strength of a pearl layer, seen at grazing angles", 0.0f, "sheen")},
    {plainColorRow("pearl_color", "of the pearl layer", {0.9f, 0.85f, 1.0f}, "sheen_color")},
};

constexpr Pattern flakes{"SpeckleSchema",
                         "flake_size",
                         {"speckle_Size", {0.0005f}},
                         "speckle_Color1",
                         0.0f,
                         {"base_color", nullptr},
                         {{"speckle_Soften", {0.5f}}}};

void addFlakes(Params& params, const LegacyValues& values)
{
    params.sheen = values.number("pearl");
    if (params.sheen > 0.0f)
    {
        const auto pearl = values.color("pearl_color");
        params.sheen_color = {pearl[0], pearl[1], pearl[2]};
    }
}

constexpr Schema metal{"MetalSchema", "metal", "bare metals", {metalOwn, reliefRows, cutOutRows},
                       bare,          &holes,  coverMetal};
constexpr Schema metallicPaint{"MetallicPaintSchema",
                               "metallicpaint",
                               "paint with metal flakes under a clear lacquer",
                               {metallicPaintOwn, reliefRows, cutOutRows},
                               lacquered,
                               &flakes,
                               addFlakes};

constexpr const Schema* all[] = {&metal, &metallicPaint};

} // namespace

std::optional<Params::Color> metalReflectance(const std::string& choice)
{
    // "aluminium" and "aluminum", "chromium" and "chrome", "steel" and "stainless_steel".
    constexpr std::size_t letters = 5;
    const auto isIn = [&](const Preset& preset)
    {
        const std::string_view name = preset.name;
        return !std::holds_alternative<std::monostate>(preset.sets[0].field) &&
               (choice.find(name.substr(0, letters)) != std::string::npos ||
                choice.find(name.substr(name.size() - std::min(letters, name.size()))) !=
                    std::string::npos);
    };
    const auto* found = std::ranges::find_if(metals, isIn);
    if (found == std::end(metals))
        return std::nullopt;
    const auto& color = found->sets[0].value;
    return Params::Color(color[0], color[1], color[2]);
}

constinit const std::span<const Schema* const> metalSchemas{all};

} // namespace vyr::MaterialTranslation::materials::legacy
