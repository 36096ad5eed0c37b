#include <algorithm>
#include <cmath>

#include "materials/legacy/Common.h"

namespace vyr::MaterialTranslation::materials::legacy
{

namespace
{

// Indices of refraction: quartz 1.54 and calcite 1.49 to 1.66 (CRC Handbook, not opened here), fired clay and cement
// between; glazes are silicate glasses of 1.5 to 1.6.
constexpr Assignment rock[] = {{&Params::specular_IOR, {1.54f}},
                               {&Params::base_color, {0.46f, 0.43f, 0.38f}}};
constexpr Assignment cement[] = {{&Params::specular_IOR, {1.54f}},
                                 {&Params::base_color, {0.36f, 0.35f, 0.33f}}};
constexpr Assignment clay[] = {{&Params::specular_IOR, {1.54f}},
                               {&Params::base_color, {0.3f, 0.085f, 0.045f}}};
constexpr Assignment glassy[] = {{&Params::specular_IOR, {1.52f}},
                                 {&Params::base_color, {0.75f, 0.74f, 0.7f}}};

constexpr Preset bonds[] = {{"none"},        {"stack"},  {"running"}, {"third"},
                            {"herringbone"}, {"basket"}, {"custom"}};

/// Units of a size in metres, with joints.
constexpr std::array<Row, 10> unitRows(float width, float height, float joint)
{
    return {{
        {choiceRow("bond",
                   "how the units lie; none: no joints are drawn; without it, but with another of "
                   "these properties: running",
                   "base_color and normal, by the pattern TileSchema"),
         {},
         Duty::None,
         bonds,
         "tile_Bond"},
        {lengthRow("unit_width", "of a unit", width, "", leastLength),
         {},
         Duty::None,
         {},
         "tile_Width"},
        {lengthRow("unit_height", "of a unit", height, "", leastLength),
         {},
         Duty::None,
         {},
         "tile_Height"},
        {lengthRow("joint_width", "of the joints", joint), {}, Duty::None, {}, "tile_JointWidth"},
        {colorRow("joint_color", "of the joints", {0.42f, 0.4f, 0.37f}),
         {},
         Duty::None,
         {},
         "tile_JointColor"},
        {lengthRow("edge", "width of the slope at a unit's edges", 0.002f),
         {},
         Duty::None,
         {},
         "tile_Bevel"},
        {shareRow("bond_offset",
                  "shift of every second row in the custom bond, as a share of a unit", 0.25f),
         {},
         Duty::None,
         {},
         "tile_Offset"},
        {shareRow("variation", "how much darker than its colour a unit may be", 0.15f),
         {},
         Duty::None,
         {},
         "tile_Variation"},
        {countRow("columns", "units side by side in the image", 8.0f, 256.0f),
         {},
         Duty::None,
         {},
         "tile_Columns"},
        {countRow("rows", "rows of units in the image", 8.0f, 256.0f),
         {},
         Duty::None,
         {},
         "tile_Rows"},
    }};
}

constexpr auto tileRows = unitRows(0.2f, 0.2f, 0.003f);
constexpr auto slabRows = unitRows(0.4f, 0.4f, 0.005f);
// A brick of 215 x 65 mm and joints of 10 mm: BS EN 771-1 and its national tables (not opened here).
constexpr auto brickRows = unitRows(0.215f, 0.065f, 0.01f);

constexpr Pattern tiles{"TileSchema", "bond", {"tile_Bond", {1.0f}},
                        "tile_Color", 0.003f, {"base_color", "normal"}};

constexpr Preset ceramicFinishes[] = {
    {"glossy",
     {{&Params::specular_roughness, {0.05f}},
      {&Params::coat, {1.0f}},
      {&Params::coat_roughness, {0.03f}}}},
    {"satin", {{&Params::specular_roughness, {0.3f}}}},
    {"matte", {{&Params::specular_roughness, {0.55f}}, {&Params::diffuse_roughness, {0.3f}}}},
};

constexpr Preset ceramicTypes[] = {
    {"ceramic", {{&Params::specular_IOR, {1.52f}}}},
    {"porcelain", {{&Params::specular_IOR, {1.5f}}, {&Params::subsurface, {0.05f}}}},
};

constexpr Row ceramicOwn[] = {
    {choiceRow("type", "what it is made of",
               "specular_IOR of the glaze; porcelain lets a little light in (subsurface)",
               "glazes are silicate glasses, 1.5 to 1.6 (not opened here)"),
     {},
     Duty::None,
     ceramicTypes},
    {choiceRow("finish", "of the glaze; matte: unglazed",
               "specular_roughness, rising to matte; a coat where it is glossy"),
     {},
     Duty::None,
     ceramicFinishes},
};

// Reliefs of worked surfaces: sizes and depths in metres, by eye.
constexpr Relief broomed = streaks(0.006f, 0.0008f, 1.0f);
constexpr Relief curved{
    "WaveSchema", 0.0f, 0.03f, 0.0015f, {{"wave_Sources", {1.0f}}, {"wave_Length", {0.03f}}}};
constexpr Relief exposed{"SpeckleSchema",
                         0.0f,
                         0.012f,
                         0.006f,
                         {{"speckle_Size", {0.012f}},
                          {"speckle_Soften", {0.6f}},
                          {"speckle_Amount", {0.95f}},
                          {"speckle_Color1", {0.0f, 0.0f, 0.0f}},
                          {"speckle_Color2", {1.0f, 1.0f, 1.0f}}},
                         0.45f};
/// Clouds as cement sets, with or without a relief.
constexpr Relief clouds(float depth, float shade)
{
    return {"NoiseSchema",
            1.0f,
            0.12f,
            depth,
            {{"noise_Type", {1.0f}},
             {"noise_Size", {12.0f}},
             {"noise_Levels", {6.0f}},
             {"noise_ThresholdLow", {0.2f}},
             {"noise_ThresholdHigh", {0.8f}}},
            shade};
}
constexpr Relief cast = clouds(0.002f, 0.3f);
constexpr Relief ground = clouds(0.0f, 0.5f);

constexpr Preset concreteFinishes[] = {
    {"cast", {{&Params::specular_roughness, {0.8f}}, {&Params::diffuse_roughness, {0.5f}}}, &cast},
    {"broom_straight",
     {{&Params::specular_roughness, {0.9f}}, {&Params::diffuse_roughness, {0.6f}}},
     &broomed},
    {"broom_curved",
     {{&Params::specular_roughness, {0.9f}}, {&Params::diffuse_roughness, {0.6f}}},
     &curved},
    {"exposed",
     {{&Params::specular_roughness, {0.85f}}, {&Params::diffuse_roughness, {0.5f}}},
     &exposed},
    {"smooth", {{&Params::specular_roughness, {0.6f}}, {&Params::diffuse_roughness, {0.4f}}}},
    {"polished", {{&Params::specular_roughness, {0.15f}}}, &ground},
};

constexpr Row concreteOwn[] = {
    {choiceRow("finish", "how the surface was worked",
               "specular_roughness and diffuse_roughness; relief and shades of base_color: clouds, "
               "strokes "
               "of a broom, or exposed aggregate"),
     {},
     Duty::None,
     concreteFinishes},
    {sealantRow("sealant", "over the surface"), {}, Duty::None, sealants},
    {shareRow("weathering", "share that is old and dirty, in patches", 0.0f,
              "base_color is darker by 0.4; evenly where the finish shades it"),
     {},
     Duty::Patches},
};

/// Dirt takes light away; wet and worn surfaces are a little rougher.
void weather(Params& params, const LegacyValues& values)
{
    params.base_color = params.base_color * (1.0f - 0.4f * values.number("weathering"));
}

constexpr Preset masonryTypes[] = {
    {"brick", {{&Params::specular_roughness, {0.8f}}, {&Params::diffuse_roughness, {0.4f}}}},
    {"cmu",
     {{&Params::specular_roughness, {0.9f}},
      {&Params::diffuse_roughness, {0.6f}},
      {&Params::base_color, {0.36f, 0.35f, 0.33f}}},
     nullptr,
     {{"tile_Width", {0.39f}}, {"tile_Height", {0.19f}}}},
    {"glazed",
     {{&Params::specular_roughness, {0.1f}},
      {&Params::coat, {1.0f}},
      {&Params::coat_roughness, {0.05f}}}},
};

constexpr Row masonryOwn[] = {
    {choiceRow("type", "fired brick, concrete masonry units, or glazed brick",
               "roughness, and what nothing else says: concrete units are grey, 390 x 190 mm",
               "EN 771-3 and ASTM C90 (not opened here)"),
     {},
     Duty::None,
     masonryTypes},
    {sealantRow("sealant", "over the wall"), {}, Duty::None, sealants},
};

constexpr Relief broken = []
{
    Relief relief = roughRelief;
    relief.depth = 0.014f;
    relief.shade = 0.5f;
    return relief;
}();

constexpr Preset stoneFinishes[] = {
    {"polished", {{&Params::specular_roughness, {0.04f}}}},
    {"glossy", {{&Params::specular_roughness, {0.18f}}}},
    {"matte", {{&Params::specular_roughness, {0.5f}}, {&Params::diffuse_roughness, {0.2f}}}},
    {"unfinished",
     {{&Params::specular_roughness, {0.85f}}, {&Params::diffuse_roughness, {0.5f}}},
     &broken},
};

constexpr Row stoneOwn[] = {
    {choiceRow("finish", "how it was worked",
               "specular_roughness, rising to unfinished, which has a relief and darker hollows"),
     {},
     Duty::None,
     stoneFinishes},
    {sealantRow("sealant", "over the stone"), {}, Duty::None, sealants},
};

constexpr Schema ceramic{"CeramicSchema",
                         "ceramic",
                         "glazed and unglazed ceramics, in pieces or tiled",
                         {colorRows, ceramicOwn, tileRows, reliefRows},
                         glassy,
                         &tiles};
constexpr Schema concrete{"ConcreteSchema",
                          "concrete",
                          "concrete, as it was worked and sealed",
                          {colorRows, concreteOwn, reliefRows},
                          cement,
                          nullptr,
                          weather};
constexpr Schema masonry{"MasonryCMUSchema",
                         "masonrycmu",
                         "walls of brick or concrete units",
                         {colorRows, masonryOwn, brickRows, reliefRows},
                         clay,
                         &tiles};
constexpr Schema stone{"StoneSchema",
                       "stone",
                       "natural stone, as it was worked and sealed",
                       {colorRows, stoneOwn, slabRows, reliefRows},
                       rock,
                       &tiles};

constexpr const Schema* all[] = {&ceramic, &concrete, &masonry, &stone};

} // namespace

constinit const std::span<const Schema* const> masonrySchemas{all};

} // namespace vyr::MaterialTranslation::materials::legacy
