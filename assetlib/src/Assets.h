#pragma once

#include <atomic>
#include <deque>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include <kelvor/platform/assets/IAssetDefinition.h>
#include <kelvor/platform/assets/IAssetIdentity.h>
#include <kelvor/platform/assets/IAssetInstance.h>
#include <kelvor/platform/assets/IProperty.h>

#include "Arena.h"
#include "Values.h"

namespace vyr::assetlib
{

class Asset;
class Store;

class Property final : public platform::IProperty
{
  public:
    Property(std::string_view identifier, std::uint32_t type, Value value)
        : _identifier(identifier), _type(type), _value(value)
    {
    }

    void GetIdentifier(UTF8String& identifier) const override
    {
        identifier = UTF8String(_identifier);
    }
    std::uint32_t GetType() const override { return _type; }
    const platform::IValue* GetValue() const override { return _value; }
    bool HasConnections() const override { return !_connections.empty(); }
    std::size_t GetConnectionCount() const override { return _connections.size(); }
    platform::IAssetInstance* GetConnectedAsset(std::size_t index) const override;

    std::string_view identifier() const { return _identifier; }
    /// @param connections in the memory of the store, like the assets; filled until the store is built.
    void setConnections(std::span<Asset* const> connections) { _connections = connections; }

  private:
    std::string_view _identifier;
    std::uint32_t _type;
    Value _value;
    std::span<Asset* const> _connections;
};

/// Properties in the order in which they were written, found by name.
class PropertyTable final : public platform::IPropertyConstTable
{
  public:
    PropertyTable() = default;
    /// @param properties of different identifiers; copied into the arena.
    PropertyTable(const std::vector<Property>& properties, Arena& arena);

    const platform::IProperty* FindProperty(const UTF8String& name) const override;
    std::size_t GetPropertyCount() const override { return _properties.size(); }
    const platform::IProperty* GetProperty(std::size_t index) const override;

  private:
    std::span<const Property> _properties;
    /// Indices of the properties, sorted by the length of their identifiers, then by the identifiers.
    std::span<const std::uint32_t> _byName;
};

class Identity final : public platform::IAssetIdentity
{
  public:
    explicit Identity(std::string_view name) : _name(name) {}
    void GetName(UTF8String& name) const override { name = UTF8String(_name); }
    std::string_view name() const { return _name; }

  private:
    std::string_view _name;
};

class Definition final : public platform::IAssetDefinition
{
  public:
    explicit Definition(std::string_view name) : _name(name) {}
    void GetName(UTF8String& name) const override { name = UTF8String(_name); }
    std::string_view name() const { return _name; }

  private:
    std::string_view _name;
};

/// A language tag and a text.
using DisplayName = std::pair<std::string_view, std::string_view>;

/// What an asset says. Clones share it with their original.
struct AssetContent
{
    std::string_view id;
    std::optional<Identity> identity;
    Definition definition{{}};
    /// In the order in which they were written.
    std::span<const DisplayName> displayNames;
    std::string_view description;
    PropertyTable properties;
    std::optional<PropertyTable> genericProperties;
};

/// An asset of a store, or a clone of one, which holds a reference to the store until it is released. Small,
/// since converters clone whatever they take.
class Asset final : public platform::IAssetInstance
{
  public:
    /// @param content in the store.
    Asset(Store& store, AssetContent& content, bool isClone)
        : _store(store), _content(content), _isClone(isClone)
    {
    }
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

    /// The changeable one is for building the store.
    AssetContent& content() { return _content; }
    const AssetContent& content() const { return _content; }

  private:
    Store& _store;
    AssetContent& _content;
    bool _isClone;
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

    /// Holds the texts, values and tables of the assets.
    Arena& arena() { return _arena; }
    /// An empty asset; its address stays.
    Asset& add() { return _assets.emplace_back(*this, *_arena.make<AssetContent>(), false); }

    void retain() { _references.fetch_add(1, std::memory_order_relaxed); }
    void release();
    /// References besides the one that the store starts with.
    std::size_t referenceCount() const { return _references.load(std::memory_order_acquire) - 1; }

  private:
    ~Store() = default;

    std::atomic<std::size_t> _references{1};
    Arena _arena;
    std::deque<Asset> _assets;
};

} // namespace vyr::assetlib
