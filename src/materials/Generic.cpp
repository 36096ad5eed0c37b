#include "materials/Generic.h"

#include <iostream>

#include <kelvor/platform/assets/IAssetInstance.h>

#include "assets/Description.h"
#include "assets/Schemas.h"
#include "textures/Translation.h"

namespace vyr::MaterialTranslation::materials
{

namespace
{

/// The table that holds the generic properties; null when the asset carries none.
const assets::IPropertyConstTable* genericTable(const assets::IAssetInstance& asset,
                                                const std::string& schema)
{
    return schema == assets::genericSchema ? &asset : asset.GetGenericPropertyTable();
}

/// The tint of a hardwood; nothing when it has none or its tint is switched off.
std::optional<Tint> readTint(const std::string& schema, const ColorReader& own)
{
    constexpr const char* color = "hardwood_tint_color";
    if (schema != assets::hardwoodSchema ||
        own.asset["hardwood_tint_enabled"].choice("") != "hardwood_color_choice" ||
        !own.asset[color].hasValue())
        return std::nullopt;
    return own.readTint(color);
}

StandardSurface readFrom(const assets::IPropertyConstTable& table, const std::string& schema,
                         const Translation& translation)
{
    const ConverterOptions& options = translation.options;
    std::ostream* const trace = options.verbose ? &std::cout : nullptr;
    const assets::Asset generic(translation.asset, table, trace);
    const assets::Asset ownAsset(translation.asset, trace);
    const ColorReader own{ownAsset, options.colorMode, translation.log};

    StandardSurface material = readGenericProperties(generic, translation);
    material.tint = readTint(schema, own);
    adjustForSchema(material.params, schema, own);
    applyColorPass(material.params, options.colorMode);
    if (material.tint && !material.textures.contains("base_color"))
        translation.log.warning(DiagnosticCode::TintIgnored, "hardwood_tint_color",
                                "only an image is tinted; the plain colour stays as it is");
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
    const auto material = assets::readOrReport(translation.log, [&]
                                               { return readFrom(*table, schema, translation); });
    return material && buildStandardSurface(*material, translation);
}

} // namespace vyr::MaterialTranslation::materials
