#include "assets/Asset.h"

#include <algorithm>
#include <unordered_set>

#include <kelvor/platform/assets/IAssetDefinition.h>
#include <kelvor/platform/assets/IAssetIdentity.h>
#include <kelvor/platform/assets/IAssetInstance.h>
#include <kelvor/platform/assets/IProperty.h>

namespace vyr::MaterialTranslation::assets
{

using kelvor::platform::core::string::UTF8String;

namespace
{

/// @return whether it was not there yet.
bool note(std::vector<const IProperty*>& list, const IProperty* property)
{
    if (std::ranges::find(list, property) != list.end())
        return false;
    list.push_back(property);
    return true;
}

bool holds(const std::vector<const IProperty*>& list, const IProperty* property)
{
    return std::ranges::find(list, property) != list.end();
}

/// Walks along connections without recursion: chains may be as long as a library.
class ImageWalk
{
  public:
    std::optional<std::vector<std::string>> from(const IAssetInstance& asset)
    {
        visit(asset);
        for (std::size_t next = 0; next < _held.size(); ++next)
            visit(*_held[next]);
        return _held.size() < mostAssets ? std::optional(std::move(_images)) : std::nullopt;
    }

  private:
    static constexpr std::size_t mostAssets = 4096;

    void visit(const IAssetInstance& asset)
    {
        visitTable(asset, asset);
        if (const IPropertyConstTable* generic = asset.GetGenericPropertyTable())
            visitTable(asset, *generic);
    }

    void visitTable(const IAssetInstance& instance, const IPropertyConstTable& table)
    {
        const Asset asset(instance, table);
        for (std::size_t i = 0; i < table.GetPropertyCount(); ++i)
            if (const IProperty* property = table.GetProperty(i))
                visitProperty(Property(asset, property, ""));
    }

    void visitProperty(const Property& property)
    {
        try
        {
            if (std::string image = property.path(); !image.empty())
                _images.push_back(std::move(image));
        }
        catch (const PropertyError&)
        {
            // It names no image.
        }
        for (std::size_t i = 0; i < property.connectionCount() && _held.size() < mostAssets; ++i)
            // Held, so that no other asset gets the address of one that was visited.
            if (AssetHandle connected = property.connected(i);
                connected && _known.insert(connected.get()).second)
                _held.push_back(std::move(connected));
    }

    std::vector<std::string> _images;
    std::unordered_set<const IAssetInstance*> _known;
    std::vector<AssetHandle> _held;
};

} // namespace

void AssetRelease::operator()(IAssetInstance* asset) const
{
    asset->Release();
}

AssetHandle cloneOf(const IAssetInstance& asset)
{
    return AssetHandle(asset.Clone());
}

void Property::settleConnection() const
{
    note(_asset->_settled, _property);
}

Asset::Asset(const IAssetInstance& instance, std::ostream* trace) : Asset(instance, instance, trace)
{
}

Property Asset::operator[](const char* name) const
{
    const IProperty* property = _table.FindProperty(name);
    if (property)
        note(_lookedUp, property);
    return {*this, property, name};
}

std::string Asset::name() const
{
    UTF8String name;
    if (const auto* identity = _instance.GetIdentity())
        identity->GetName(name);
    return name.str();
}

std::string Asset::displayName() const
{
    UTF8String name;
    _instance.GetDisplayName(name, "eng");
    return name.str();
}

const std::string& Asset::schema() const
{
    if (!_schema)
    {
        UTF8String name;
        if (const auto* definition = _instance.GetDefinition())
            definition->GetName(name);
        _schema = name.str();
    }
    return *_schema;
}

bool Asset::hasWorkingPropertyNames() const
{
    return _instance.HasWorkingPropertyNames();
}

std::string Asset::description() const
{
    UTF8String description;
    _instance.GetDescription(description);
    return description.str();
}

std::string Asset::identifier() const
{
    UTF8String identifier;
    _instance.GetIdentifier(identifier);
    return identifier.str();
}

bool Asset::isKnownCompanion(const std::string& name) const
{
    const std::string_view suffix = colorSpaceSuffix;
    if (name.size() <= suffix.size() || !name.ends_with(suffix))
        return false;
    const auto* property = _table.FindProperty(name.substr(0, name.size() - suffix.size()));
    return property && holds(_lookedUp, property);
}

void Asset::reportUnread(const Log& log, bool (*isConditional)(const std::string& name)) const
{
    const auto isExpected = [&](const std::string& name)
    {
        return name == versionProperty || name == hiddenProperty ||
               (isConditional && isConditional(name)) || isKnownCompanion(name);
    };
    for (std::size_t i = 0; i < _table.GetPropertyCount(); ++i)
    {
        const Property property(*this, _table.GetProperty(i), "");
        if (!property)
            continue;
        const std::string name = property.identifier();
        if (property._property->HasConnections() && !holds(_settled, property._property))
            log.warning(DiagnosticCode::TextureUnused, name,
                        "nothing in the document uses the texture connected to it");
        else if (!holds(_lookedUp, property._property) && !isExpected(name))
            log.warning(DiagnosticCode::PropertyUnread, name,
                        "no rule reads a property of this name here");
    }
}

void Asset::trace(const Property& property) const
{
    if (_trace && note(_traced, property._property))
        writeProperty(property, *_trace);
}

void Asset::traceTexture(const Property& property) const
{
    if (!_trace)
        return;
    if (property.isConnected())
        note(_traced, property._property);
    writeTextureSchema(property, *_trace);
}

std::optional<std::vector<std::string>> imagesOf(const IAssetInstance& asset)
{
    return ImageWalk().from(asset);
}

} // namespace vyr::MaterialTranslation::assets
