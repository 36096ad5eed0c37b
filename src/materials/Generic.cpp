#include <algorithm>
#include <cmath>
#include <iostream>
#include <iterator>
#include <string_view>

#include <kelvor/platform/assets/IAssetInstance.h>

#include "assets/Asset.h"
#include "materials/Translators.h"
#include "textures/Translation.h"

namespace vyr::MaterialTranslation::materials
{

namespace
{

using Color = StandardSurfaceParams::Color;

/// The metal that the choice "metal_type" names, by a word in the choice's name.
struct FlakeRow
{
    std::string_view word;
    Color color; ///< reflectance at normal incidence, linear Rec.709
};

// Rounded reflectances of polished metals, as tables of physically based values commonly give them.
const FlakeRow flakes[] = {
    {"alumin", {0.912f, 0.914f, 0.920f}}, {"brass", {0.887f, 0.789f, 0.434f}},
    {"bronze", {0.800f, 0.590f, 0.350f}}, {"chrom", {0.549f, 0.556f, 0.554f}},
    {"copper", {0.955f, 0.638f, 0.538f}}, {"gold", {1.000f, 0.782f, 0.344f}},
    {"silver", {0.962f, 0.949f, 0.922f}}, {"steel", {0.562f, 0.565f, 0.578f}},
};

/// Flakes of a metal under a clear coat: the flakes mirror in their colour, the lacquer above them
/// is smooth.
void adjustMetallicPaint(StandardSurfaceParams& params, const assets::ColorReader& own)
{
    constexpr const char* property = "metal_type";
    params.specular = 1.0f;
    params.coat = 1.0f;
    const std::string metal = own.asset[property].choice("");
    if (metal.empty())
        return;
    const auto* flake = std::ranges::find_if(flakes, [&](const FlakeRow& row)
                                             { return metal.find(row.word) != std::string::npos; });
    if (flake == std::end(flakes))
    {
        own.log.warning(DiagnosticCode::ChoiceUnknown, property,
                        "\"" + metal +
                            "\" is no metal that is known; the paint keeps its own colour");
        return;
    }
    params.base_color = assets::encodeLinear(flake->color, own.colorMode);
    params.metalness = 1.0f;
}

/// Glass through and through: its colour is that of the light that passes, and its reflectance at
/// normal incidence R is an index of refraction of (1 + sqrt R) / (1 - sqrt R), Fresnel's formula
/// for a surface in air.
void adjustSolidGlass(StandardSurfaceParams& params, const assets::ColorReader& own)
{
    constexpr const char* property = "glazing_reflectance";
    params.transmission_color = params.base_color;
    params.specular = 1.0f;
    if (!own.asset[property].hasValue())
        return;
    constexpr float highest = 0.9f; // an index of 38; a perfect mirror has none
    const float reflectance = own.asset[property].number();
    const float used = std::clamp(reflectance, 0.0f, highest);
    if (used != reflectance)
        own.log.warning(DiagnosticCode::ValueAdjusted, property,
                        "taken as the nearest of 0 to 0.9");
    const float root = std::sqrt(used);
    params.specular_IOR = (1.0f + root) / (1.0f - root);
}

/// Water by where it stands.
struct WaterRow
{
    std::string_view type;
    Color base;         ///< what the bottom sends back, linear Rec.709
    Color transmission; ///< what the water leaves of the light, linear Rec.709
};

// Appearance, not measurement: a lit pool with light tiles, and a dark basin that mirrors.
const WaterRow waters[] = {
    {"water_swimming_pool", {0.055f, 0.396f, 0.551f}, {0.455f, 0.840f, 0.907f}},
    {"water_reflecting_pool", {0.001f, 0.002f, 0.002f}, {0.238f, 0.356f, 0.369f}},
};

void adjustWater(StandardSurfaceParams& params, const assets::ColorReader& own)
{
    constexpr const char* property = "water_type";
    constexpr float waterIndex = 1.333f; // at 20 degrees Celsius, 589 nm
    params.specular = 1.0f;
    params.specular_IOR = waterIndex;
    const std::string type = own.asset[property].choice("");
    const auto* water =
        std::ranges::find_if(waters, [&](const WaterRow& row) { return row.type == type; });
    if (water != std::end(waters))
    {
        params.base_color = assets::encodeLinear(water->base, own.colorMode);
        params.transmission_color = assets::encodeLinear(water->transmission, own.colorMode);
        return;
    }
    params.transmission_color = params.base_color;
    if (!type.empty())
        own.log.warning(DiagnosticCode::ChoiceUnknown, property,
                        "\"" + type +
                            "\" is no kind of water that is known; it keeps its own colour");
}

using Adjustment = void (*)(StandardSurfaceParams&, const assets::ColorReader&);

struct AdjustmentRow
{
    const char* schema;
    Adjustment adjust;
};

constexpr AdjustmentRow adjustments[] = {
    {assets::metallicPaintSchema, adjustMetallicPaint},
    {assets::solidGlassSchema, adjustSolidGlass},
    {assets::waterSchema, adjustWater},
};

/// Adjusts what the generic properties said for the schemas whose nature they do not carry. Other schemas
/// stay as they are.
void adjustForSchema(StandardSurfaceParams& params, const std::string& schema,
                     const assets::ColorReader& own)
{
    for (const AdjustmentRow& row : adjustments)
        if (schema == row.schema)
            row.adjust(params, own);
}

/// The table that holds the generic properties; null when the asset carries none.
const assets::IPropertyConstTable* genericTable(const assets::IAssetInstance& asset,
                                                const std::string& schema)
{
    return schema == assets::genericSchema ? &asset : asset.GetGenericPropertyTable();
}

/// The tint of a hardwood; nothing when it has none or its tint is switched off.
std::optional<assets::DeclaredColor> readTint(const std::string& schema,
                                              const assets::ColorReader& own)
{
    constexpr const char* color = "hardwood_tint_color";
    if (schema != assets::hardwoodSchema ||
        own.asset["hardwood_tint_enabled"].choice("") != "hardwood_color_choice" ||
        !own.asset[color].hasValue())
        return std::nullopt;
    return own.readDeclared(color);
}

StandardSurface readFrom(const assets::IPropertyConstTable& table, const std::string& schema,
                         const Translation& translation)
{
    const ConverterOptions& options = translation.options;
    std::ostream* const trace = options.verbose ? &std::cout : nullptr;
    const assets::Asset generic(translation.asset, table, trace);
    const assets::Asset ownAsset(translation.asset, trace);
    const assets::ColorReader own{ownAsset, options.colorMode, translation.log};

    StandardSurface material = readGenericProperties(generic, translation);
    material.tint = readTint(schema, own);
    adjustForSchema(material.params, schema, own);
    const auto pass = [&](Color& color, const char* property)
    { color = assets::writtenColor(color, options.colorMode, property); };
    pass(material.params.base_color, "generic_diffuse");
    pass(material.params.transmission_color, "generic_diffuse");
    pass(material.params.emission_color, "generic_self_illum_filter_map");
    if (material.tint && !material.textures.contains("base_color"))
        translation.log.warning(DiagnosticCode::TintIgnored, "hardwood_tint_color",
                                "only an image is tinted; the plain colour stays as it is");
    // Gathering names them itself: a user's image may want the name.
    if (!options.copyTextures)
        textures::publishBakes(translation);
    return material;
}

} // namespace

bool translateGeneric(const Translation& translation)
{
    const assets::Asset asset(translation.asset);
    if (translation.options.verbose)
        assets::writeMaterialDescription(asset, std::cout);
    const std::string schema = asset.schema();
    const assets::IPropertyConstTable* table = genericTable(translation.asset, schema);
    if (!table)
    {
        translation.log.error(DiagnosticCode::NoGenericProperties, "",
                              "a material of schema \"" + schema + "\" without generic properties");
        return false;
    }
    if (!Skeleton::isPossible(placeOf(translation), standardSurfaceGraphSuffix))
        return false;
    const auto material = assets::readOrReport(translation.log, [&]
                                               { return readFrom(*table, schema, translation); });
    if (material)
        buildStandardSurface(*material, translation);
    return material.has_value();
}

} // namespace vyr::MaterialTranslation::materials
