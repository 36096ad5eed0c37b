#pragma once

#include <atomic>
#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <kelvor/platform/assets/IAssetDefinition.h>
#include <kelvor/platform/assets/IAssetIdentity.h>
#include <kelvor/platform/assets/IAssetInstance.h>
#include <kelvor/platform/assets/IProperty.h>

#include "Values.h"

namespace vyr::assetlib
{

class Asset;
class Store;

class Property final : public platform::IProperty
{
  public:
    Property(std::string identifier, std::uint32_t type, Value value)
        : _identifier(std::move(identifier)), _type(type), _value(std::move(value))
    {
    }

    void GetIdentifier(UTF8String& identifier) const override
    {
        identifier = UTF8String(_identifier);
    }
    std::uint32_t GetType() const override { return _type; }
    const platform::IValue* GetValue() const override { return _value.get(); }
    bool HasConnections() const override { return !_connections.empty(); }
    std::size_t GetConnectionCount() const override { return _connections.size(); }
    platform::IAssetInstance* GetConnectedAsset(std::size_t index) const override;

    const std::string& identifier() const { return _identifier; }
    /// The connected assets, in the same store; filled while the store is built.
    std::vector<Asset*>& connections() { return _connections; }

  private:
    std::string _identifier;
    std::uint32_t _type;
    Value _value;
    std::vector<Asset*> _connections;
};

/// Properties in the order in which they were written, found by name.
class PropertyTable final : public platform::IPropertyConstTable
{
  public:
    PropertyTable() = default;
    /// @param properties of different identifiers.
    explicit PropertyTable(std::vector<Property> properties);

    const platform::IProperty* FindProperty(const UTF8String& name) const override;
    std::size_t GetPropertyCount() const override { return _properties.size(); }
    const platform::IProperty* GetProperty(std::size_t index) const override;

    Property& at(std::size_t index) { return _properties[index]; }

  private:
    std::vector<Property> _properties;
    /// Indices of the properties, sorted by identifier.
    std::vector<std::uint32_t> _byName;
};

class Identity final : public platform::IAssetIdentity
{
  public:
    explicit Identity(std::string name) : _name(std::move(name)) {}
    void GetName(UTF8String& name) const override { name = UTF8String(_name); }
    const std::string& name() const { return _name; }

  private:
    std::string _name;
};

class Definition final : public platform::IAssetDefinition
{
  public:
    explicit Definition(std::string name) : _name(std::move(name)) {}
    void GetName(UTF8String& name) const override { name = UTF8String(_name); }

  private:
    std::string _name;
};

/// What an asset says. Clones share it with their original.
struct AssetContent
{
    std::string id;
    std::optional<Identity> identity;
    Definition definition{std::string()};
    /// Language tag and text, in the order in which they were written.
    std::vector<std::pair<std::string, std::string>> displayNames;
    std::string description;
    PropertyTable properties;
    std::optional<PropertyTable> genericProperties;
};

/// An asset of a store, or a clone of one.
class Asset final : public platform::IAssetInstance
{
  public:
    /// An asset that belongs to the store.
    explicit Asset(Store& store) : _store(store), _content(&_own.emplace()) {}
    /// A clone, which holds a reference to the store until it is released.
    Asset(Store& store, const AssetContent& content) : _store(store), _content(&content) {}
    Asset(const Asset&) = delete;
    Asset& operator=(const Asset&) = delete;

    void Release() override;
    const platform::IProperty* FindProperty(const UTF8String& name) const override;
    std::size_t GetPropertyCount() const override;
    const platform::IProperty* GetProperty(std::size_t index) const override;
    void GetDisplayName(UTF8String& name, const char* language) const override;
    void GetDescription(UTF8String& description) const override;
    const platform::IAssetIdentity* GetIdentity() const override;
    const platform::IAssetDefinition* GetDefinition() const override;
    bool HasWorkingPropertyNames() const override { return true; }
    platform::IAssetInstance* Clone() const override;
    void GetIdentifier(UTF8String& identifier) const override;
    const platform::IPropertyConstTable* GetGenericPropertyTable() const override;

    /// Adds a reference that Release gives back. Only for assets that belong to the store.
    Asset* retain();

    /// The changeable one is for building the store; only for assets that belong to it.
    AssetContent& content() { return *_own; }
    const AssetContent& content() const { return *_content; }

  private:
    Store& _store;
    std::optional<AssetContent> _own;
    const AssetContent* _content;
};

/// All assets of one load. They refer to each other, so they live and go together: the store counts
/// the references to all of them. Connections may be long chains, which one reference an asset would
/// tear down by deep recursion.
class Store
{
  public:
    Store() = default;
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    /// An empty asset; its address stays.
    Asset& add() { return _assets.emplace_back(*this); }

    void retain() { _references.fetch_add(1, std::memory_order_relaxed); }
    void release();
    /// References besides the one that the store starts with.
    std::size_t referenceCount() const { return _references.load(std::memory_order_acquire) - 1; }

  private:
    ~Store() = default;

    std::atomic<std::size_t> _references{1};
    std::deque<Asset> _assets;
};

} // namespace vyr::assetlib
