#include <algorithm>
#include <cmath>
#include <iostream>
#include <iterator>

#include <kelvor/platform/assets/IAssetInstance.h>

#include "assets/Asset.h"
#include "materials/Translators.h"
#include "materials/legacy/Rows.h"
#include "textures/Translation.h"

namespace vyr::MaterialTranslation::materials
{

namespace
{

using Color = StandardSurfaceParams::Color;

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
    const auto flake = legacy::metalReflectance(metal);
    if (!flake)
    {
        own.log.warning(DiagnosticCode::ChoiceUnknown, property,
                        "\"" + metal +
                            "\" is no metal that is known; the paint keeps its own colour");
        return;
    }
    params.base_color = assets::encodeLinear(*flake, own.colorMode);
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
    const float reflectance = own.asset[property].number();
    const float used = std::clamp(reflectance, 0.0f, legacy::highestReflectance);
    if (used != reflectance)
        own.log.warning(DiagnosticCode::ValueAdjusted, property,
                        "taken as the nearest of 0 to 0.9");
    params.specular_IOR = legacy::indexOfReflectance(used);
}

void adjustWater(StandardSurfaceParams& params, const assets::ColorReader& own)
{
    constexpr const char* property = "water_type";
    params.specular = 1.0f;
    params.specular_IOR = legacy::waterIndex;
    const std::string type = own.asset[property].choice("");
    if (const auto water = legacy::waterColors(type))
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
    return material;
}

} // namespace

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
    return translateStandardSurface(translation,
                                    [&] { return readFrom(*table, schema, translation); });
}

} // namespace vyr::MaterialTranslation::materials
