#include "materials/GenericTranslator.h"

#include <iostream>
#include <optional>

#include "assets/Description.h"
#include "assets/PropertyError.h"
#include "assets/PropertyReaders.h"
#include "assets/Schemas.h"
#include "materials/ColorPass.h"
#include "materials/GenericReader.h"
#include "materials/SchemaAdjustments.h"
#include "materials/StandardSurface.h"

namespace vyr::MaterialTranslation::materials
{

namespace
{

/// The table that holds the generic properties; null when the asset carries none.
const assets::IPropertyConstTable* genericTable(const assets::IAssetInstance& asset,
                                                const std::string& schema)
{
    if (schema == assets::genericSchema)
        return &asset;
    return asset.GetGenericPropertyTable();
}

/// The tint of a hardwood; nothing when it has none or its tint is switched off.
std::optional<StandardSurfaceParams::Color> readTint(const assets::AssetView& own,
                                                     const std::string& schema,
                                                     std::int32_t colorMode)
{
    constexpr const char* color = "hardwood_tint_color";
    if (schema != assets::hardwoodSchema ||
        assets::GetFirstChoiceOr(own, "hardwood_tint_enabled", "") != "hardwood_color_choice" ||
        !assets::HasPropertyValue(own, color))
        return std::nullopt;
    return readColor(own, color, {}, colorMode);
}

GenericMaterial readFrom(const assets::IPropertyConstTable& table, const std::string& schema,
                         const Translation& translation)
{
    const auto& [asset, name, document, options, log, baked] = translation;
    assets::PropertyUse use;
    const assets::AssetView own(asset);
    GenericMaterial material =
        readGenericMaterial(assets::AssetView(asset, table, &use), options, log);
    material.tint = readTint(own, schema, options.colorMode);
    adjustForSchema(material, schema, own, options.colorMode, log);
    applyColorPass(material, options.colorMode);
    if (material.tint && !material.textures.contains("base_color"))
        log.warning(DiagnosticCode::TintIgnored, "hardwood_tint_color",
                    "only an image is tinted; the plain colour stays as it is");
    return material;
}

/// What the asset says; nothing, with the reason in the log, when it cannot be read.
std::optional<GenericMaterial> readMaterial(const Translation& translation)
{
    try
    {
        const std::string schema = assets::GetAssetSchemaName(translation.asset);
        if (const auto* table = genericTable(translation.asset, schema))
            return readFrom(*table, schema, translation);
        translation.log.error(DiagnosticCode::NoGenericProperties, "",
                              "a material of schema \"" + schema + "\" without generic properties");
    }
    catch (const assets::PropertyError& error)
    {
        translation.log.error(error.code(), error.property(), error.reason());
    }
    catch (const std::invalid_argument& error)
    {
        translation.log.error(DiagnosticCode::PropertyInvalid, "", error.what());
    }
    return std::nullopt;
}

} // namespace

bool translateGeneric(const Translation& translation)
{
    if (translation.options.verbose)
        assets::WriteMaterialDescription(translation.asset, std::cout);
    const std::optional<GenericMaterial> material = readMaterial(translation);
    return material && buildStandardSurface(*material, translation);
}

} // namespace vyr::MaterialTranslation::materials
