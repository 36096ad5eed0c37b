#include "support/AssetPool.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <utility>

#include <kelvor/platform/assets/IAssetDefinition.h>
#include <kelvor/platform/assets/IAssetIdentity.h>

#include "support/Host.h"

namespace vyr::support
{

namespace
{

using namespace kelvor::platform::assets;
using kelvor::platform::core::string::UTF8String;

IAssetInstance* addReference(IAssetInstance* asset);

/// An identity or a definition object: both only know a name.
template <class Interface> class Named final : public Interface
{
  public:
    explicit Named(std::string name) : _name(std::move(name)) {}
    void GetName(UTF8String& name) const override
    {
        passOperation("GetName");
        name = UTF8String(_name);
    }

  private:
    std::string _name;
};

class Property final : public IProperty
{
  public:
    explicit Property(const PropertyRecord& record) : _record(record) {}

    void GetIdentifier(UTF8String& identifier) const override
    {
        passOperation("IProperty::GetIdentifier");
        identifier = UTF8String(_record.name);
    }
    std::uint32_t GetType() const override
    {
        passOperation("IProperty::GetType");
        return _record.type;
    }
    const IValue* GetValue() const override
    {
        passOperation("IProperty::GetValue");
        return _record.value.get();
    }
    bool HasConnections() const override
    {
        passOperation("IProperty::HasConnections");
        return _record.connections != Connections::True || !_record.connected.empty();
    }
    std::size_t GetConnectionCount() const override
    {
        passOperation("IProperty::GetConnectionCount");
        return _record.connections == Connections::ClaimedButNull ? 1 : _record.connected.size();
    }
    IAssetInstance* GetConnectedAsset(std::size_t index) const override
    {
        passOperation("IProperty::GetConnectedAsset");
        if (index < _record.connected.size())
            return addReference(_record.connected[index].get());
        if (_record.connections != Connections::ClaimedButNull || index > 0)
            recordBreach("IProperty::GetConnectedAsset: asset " + std::to_string(index) + " of " +
                         _record.name);
        return nullptr;
    }

    const std::string& name() const { return _record.name; }

  private:
    const PropertyRecord& _record;
};

class Table final : public IPropertyConstTable
{
  public:
    Table(const std::deque<PropertyRecord>& records, bool lists)
        : _properties(records.begin(), records.end()), _lists(lists)
    {
    }
    const IProperty* FindProperty(const UTF8String& name) const override
    {
        passOperation("IPropertyConstTable::FindProperty");
        const auto found =
            std::find_if(_properties.begin(), _properties.end(),
                         [&](const Property& property) { return property.name() == name.str(); });
        return found == _properties.end() ? nullptr : &*found;
    }
    std::size_t GetPropertyCount() const override
    {
        passOperation("IPropertyConstTable::GetPropertyCount");
        return _lists ? _properties.size() : 0;
    }
    const IProperty* GetProperty(std::size_t index) const override
    {
        passOperation("IPropertyConstTable::GetProperty");
        if (_lists && index < _properties.size())
            return &_properties[index];
        recordBreach("IPropertyConstTable::GetProperty: property " + std::to_string(index));
        return nullptr;
    }

  private:
    std::vector<Property> _properties;
    bool _lists;
};

/// A content with the objects over it that the interfaces hand out.
struct Body
{
    explicit Body(AssetContent from)
        : content(std::move(from)), properties(content.properties, content.listsProperties)
    {
        if (content.ownName)
            identity.emplace(*content.ownName);
        if (content.schema)
            definition.emplace(*content.schema);
        if (content.genericProperties)
            generic.emplace(*content.genericProperties, content.listsProperties);
    }
    Body(const Body&) = delete;
    Body& operator=(const Body&) = delete;

    AssetContent content;
    Table properties;
    std::optional<Table> generic;
    std::optional<Named<IAssetIdentity>> identity;
    std::optional<Named<IAssetDefinition>> definition;
};

std::atomic<std::size_t> live = 0;
std::atomic<std::size_t> clones = 0;

class Asset final : public IAssetInstance
{
  public:
    explicit Asset(std::shared_ptr<const Body> body) : _body(std::move(body)) { ++live; }

    void addReference() { ++_references; }
    bool isReleased() const { return _references == 0; }

    void Release() override
    {
        if (isReleased())
        {
            recordBreach("IAssetInstance::Release: given back twice");
            return;
        }
        if (--_references > 0)
            return;
        --live;
        _body.reset();
    }
    void GetDisplayName(UTF8String& name, const char* language) const override
    {
        const AssetContent& content = body("IAssetInstance::GetDisplayName").content;
        if (std::string(language) != "eng")
            recordBreach("IAssetInstance::GetDisplayName: language " + std::string(language));
        name = UTF8String(content.displayName);
    }
    void GetDescription(UTF8String& description) const override
    {
        description = UTF8String(body("IAssetInstance::GetDescription").content.description);
    }
    const IAssetIdentity* GetIdentity() const override
    {
        const auto& identity = body("IAssetInstance::GetIdentity").identity;
        return identity ? &*identity : nullptr;
    }
    const IAssetDefinition* GetDefinition() const override
    {
        const auto& definition = body("IAssetInstance::GetDefinition").definition;
        return definition ? &*definition : nullptr;
    }
    bool HasWorkingPropertyNames() const override
    {
        return body("IAssetInstance::HasWorkingPropertyNames").content.workingNames;
    }
    IAssetInstance* Clone() const override;
    void GetIdentifier(UTF8String& identifier) const override
    {
        identifier = UTF8String(body("IAssetInstance::GetIdentifier").content.identifier);
    }
    const IPropertyConstTable* GetGenericPropertyTable() const override
    {
        const auto& generic = body("IAssetInstance::GetGenericPropertyTable").generic;
        return generic ? &*generic : nullptr;
    }
    const IProperty* FindProperty(const UTF8String& name) const override
    {
        return body("FindProperty").properties.FindProperty(name);
    }
    std::size_t GetPropertyCount() const override
    {
        return body("GetPropertyCount").properties.GetPropertyCount();
    }
    const IProperty* GetProperty(std::size_t index) const override
    {
        return body("GetProperty").properties.GetProperty(index);
    }

  private:
    const Body& body(const char* operation) const
    {
        passOperation(operation);
        if (!isReleased())
            return *_body;
        recordBreach(std::string(operation) + ": asset used after its last reference");
        throw std::logic_error("released asset used");
    }

    std::atomic<int> _references = 1;
    std::shared_ptr<const Body> _body;
};

std::mutex poolMutex;
std::deque<Asset> pool;

IAssetInstance* addToPool(std::shared_ptr<const Body> body)
{
    const std::lock_guard lock(poolMutex);
    return &pool.emplace_back(std::move(body));
}

IAssetInstance* addReference(IAssetInstance* asset)
{
    static_cast<Asset*>(asset)->addReference();
    return asset;
}

IAssetInstance* Asset::Clone() const
{
    if (!body("IAssetInstance::Clone").content.clonable)
        return nullptr;
    ++clones;
    return addToPool(_body);
}

} // namespace

std::size_t liveAssets()
{
    return live;
}

std::size_t cloneCount()
{
    return clones;
}

AssetPtr makeAsset(AssetContent content)
{
    return AssetPtr(addToPool(std::make_shared<const Body>(std::move(content))));
}

AssetPtr shareAsset(const AssetPtr& asset)
{
    return AssetPtr(addReference(asset.get()));
}

void resetAssetPool()
{
    clones = 0;
    const std::lock_guard lock(poolMutex);
    if (live == 0)
        pool.clear();
}

} // namespace vyr::support
