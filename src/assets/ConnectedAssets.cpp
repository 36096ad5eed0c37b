#include <kelvor/platform/assets/IAssetDefinition.h>
#include <kelvor/platform/assets/IAssetIdentity.h>
#include <kelvor/platform/assets/IProperty.h>

#include "assets/PropertyReaders.h"
#include "assets/Schemas.h"

namespace vyr::MaterialTranslation::assets
{

using kelvor::platform::core::string::UTF8String;

bool HasConnectedAsset(const AssetView& view, const char* name)
{
    return GetConnectionCount(view, name) != 0;
}

std::size_t GetConnectionCount(const AssetView& view, const char* name)
{
    const IProperty* property = FindProperty(view, name);
    return property && property->HasConnections() ? property->GetConnectionCount() : 0;
}

void dismissConnection(const AssetView& view, const char* name)
{
    const IProperty* property = FindProperty(view, name);
    if (property && view.use())
        view.use()->noteConnection(property);
}

ConnectedAsset GetConnectedAsset(const AssetView& view, const char* name)
{
    if (!HasConnectedAsset(view, name))
        return {false, nullptr};
    AssetHandle asset(FindProperty(view, name)->GetConnectedAsset(0));
    const bool found = asset != nullptr;
    return {found, std::move(asset)};
}

ConnectedAsset GetConnectedBitmapAsset(const AssetView& view, const char* name)
{
    ConnectedAsset connected = GetConnectedAsset(view, name);
    if (connected.first &&
        GetResolvedWidePath(AssetView(*connected.second), bitmapImageProperty).empty())
        return {false, nullptr};
    return connected;
}

std::string GetConnectedTextureName(const AssetView& view, const char* name)
{
    const ConnectedAsset connected = GetConnectedAsset(view, name);
    return connected.first ? GetAssetSchemaName(*connected.second) : "No connected texture!";
}

std::string GetAssetName(const IAssetInstance& asset)
{
    UTF8String name;
    if (const auto* identity = asset.GetIdentity())
        identity->GetName(name);
    return name.str();
}

std::string GetAssetDisplayName(const IAssetInstance& asset)
{
    UTF8String name;
    asset.GetDisplayName(name, "eng");
    return name.str();
}

std::string GetAssetSchemaName(const IAssetInstance& asset)
{
    UTF8String name;
    if (const auto* definition = asset.GetDefinition())
        definition->GetName(name);
    return name.str();
}

std::string GetAssetDescription(const IAssetInstance& asset)
{
    UTF8String description;
    asset.GetDescription(description);
    return description.str();
}

std::string GetAssetIdentifier(const IAssetInstance& asset)
{
    UTF8String identifier;
    asset.GetIdentifier(identifier);
    return identifier.str();
}

} // namespace vyr::MaterialTranslation::assets
