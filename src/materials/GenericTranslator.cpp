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

std::optional<GenericMaterial> readMaterial(const assets::IAssetInstance& asset,
                                            const ConverterOptions& options, const core::Log& log)
{
    const std::string schema = assets::GetAssetSchemaName(asset);
    const assets::IPropertyConstTable* table = genericTable(asset, schema);
    if (!table)
    {
        log.error(DiagnosticCode::NoGenericProperties, "",
                  "a material of schema \"" + schema + "\" without generic properties");
        return std::nullopt;
    }
    assets::PropertyUse use;
    const assets::AssetView own(asset);
    GenericMaterial material =
        readGenericMaterial(assets::AssetView(asset, *table, &use), options, log);
    material.tint = readTint(own, schema, options.colorMode);
    adjustForSchema(material, schema, own, options.colorMode, log);
    applyColorPass(material.params, options.colorMode);
    return material;
}

} // namespace

bool translateGeneric(const std::string& name, const assets::IAssetInstance& asset,
                      const MaterialX::DocumentPtr& document, const ConverterOptions& options,
                      const core::Log& log)
{
    if (options.verbose)
        assets::WriteMaterialDescription(asset, std::cout);
    std::optional<GenericMaterial> material;
    try
    {
        material = readMaterial(asset, options, log);
    }
    catch (const assets::PropertyError& error)
    {
        log.error(error.code(), error.property(), error.reason());
    }
    catch (const std::invalid_argument& error)
    {
        log.error(DiagnosticCode::PropertyInvalid, "", error.what());
    }
    return material && buildStandardSurface(document, name, assets::GetAssetIdentifier(asset),
                                            *material, options, log);
}

} // namespace vyr::MaterialTranslation::materials
