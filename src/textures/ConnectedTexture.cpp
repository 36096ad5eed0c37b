#include "textures/ConnectedTexture.h"

#include "assets/PropertyError.h"
#include "assets/PropertyReaders.h"
#include "assets/Schemas.h"

namespace vyr::MaterialTranslation::textures
{

namespace mx = MaterialX;

namespace
{

/// The first asset connected to the property; a warning when there are more.
assets::AssetHandle takeConnection(const assets::AssetView& material, const char* property,
                                   const core::Log& log)
{
    const std::size_t count = assets::GetConnectionCount(material, property);
    assets::dismissConnection(material, property);
    if (count > 1)
        log.warning(DiagnosticCode::ConnectionsIgnored, property,
                    "only the first of " + std::to_string(count) + " connected assets is used");
    return assets::GetConnectedAsset(material, property).second;
}

std::optional<ConnectedTexture> readBitmap(const assets::IAssetInstance& asset,
                                           const char* property, const core::Log& log)
{
    assets::PropertyUse use;
    const assets::AssetView view(asset, &use);
    BitmapTexture bitmap = readBitmapTexture(view, log.below(property));
    if (bitmap.image.empty())
        return std::nullopt;
    assets::reportLeftProperties(view, {}, log.below(property));
    return ConnectedTexture{property, std::move(bitmap)};
}

} // namespace

std::optional<ConnectedTexture> readConnectedTexture(const assets::AssetView& material,
                                                     const char* property, TextureRole role,
                                                     const core::Log& log)
{
    const assets::AssetHandle asset = takeConnection(material, property, log);
    if (!asset)
        return std::nullopt;
    const std::string schema = assets::GetAssetSchemaName(*asset);
    if (role != TextureRole::Value || schema != assets::bitmapSchema)
    {
        log.warning(DiagnosticCode::TextureNotTranslated, property,
                    "a texture of schema \"" + schema + "\" cannot be translated here; " +
                        (role == TextureRole::Value ? "the plain value is used"
                                                    : "the surface stays without relief"));
        return std::nullopt;
    }
    try
    {
        return readBitmap(*asset, property, log);
    }
    catch (const assets::PropertyError& error)
    {
        throw error.below(property);
    }
}

mx::OutputPtr addConnectedTexture(const ConnectedTexture& texture, const mx::NodeGraphPtr& graph,
                                  const std::string& type)
{
    return std::visit(
        [&](const BitmapTexture& bitmap)
        { return addBitmapTexture(bitmap, graph, texture.property, type); }, texture.content);
}

} // namespace vyr::MaterialTranslation::textures
