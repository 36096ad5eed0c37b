#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <deque>
#include <memory>
#include <memory_resource>
#include <new>
#include <optional>
#include <span>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include <kelvor/platform/assets/IAssetDefinition.h>
#include <kelvor/platform/assets/IAssetIdentity.h>
#include <kelvor/platform/assets/IAssetInstance.h>
#include <kelvor/platform/assets/IProperty.h>

#include "Values.h"

namespace vyr::assetlib
{

/// Memory for things that go all at once. Nothing in it is destroyed, so that it must own nothing
/// outside. Filled by one thread.
class Arena
{
  public:
    Arena() = default;
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;

    /// A copy of the items.
    template <class Items> auto keep(const Items& items)
    {
        using Item = std::remove_cvref_t<decltype(*std::data(items))>;
        const std::size_t count = std::size(items);
        // Nothing has a place of its own too.
        const std::size_t size = std::max<std::size_t>(count, 1) * sizeof(Item);
        auto* kept = static_cast<Item*>(_memory.allocate(size, alignof(Item)));
        std::uninitialized_copy_n(std::data(items), count, kept);
        return std::span<Item>(kept, count);
    }

    std::string_view keepText(std::string_view text)
    {
        const auto kept = keep(text);
        return {kept.data(), kept.size()};
    }

    template <class Thing, class... Arguments> Thing* make(Arguments&&... arguments)
    {
        void* place = _memory.allocate(sizeof(Thing), alignof(Thing));
        return ::new (place) Thing(std::forward<Arguments>(arguments)...);
    }

  private:
    static constexpr std::size_t firstBlock = std::size_t{1} << 16;
    std::pmr::monotonic_buffer_resource _memory{firstBlock};
};

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

/// A language tag and a text.
using DisplayName = std::pair<std::string_view, std::string_view>;

/// What an asset says. Clones share it with their original.
struct AssetContent
{
    std::string_view id;
    std::optional<Named<platform::IAssetIdentity>> identity;
    Named<platform::IAssetDefinition> definition{{}};
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
    const platform::IProperty* FindProperty(const UTF8String& name) const override
    {
        return _content.properties.FindProperty(name);
    }
    std::size_t GetPropertyCount() const override { return _content.properties.GetPropertyCount(); }
    const platform::IProperty* GetProperty(std::size_t index) const override
    {
        return _content.properties.GetProperty(index);
    }
    void GetDisplayName(UTF8String& name, const char* language) const override;
    void GetDescription(UTF8String& text) const override
    {
        text = UTF8String(_content.description);
    }
    const platform::IAssetIdentity* GetIdentity() const override
    {
        return _content.identity ? &*_content.identity : nullptr;
    }
    const platform::IAssetDefinition* GetDefinition() const override
    {
        return &_content.definition;
    }
    bool HasWorkingPropertyNames() const override { return true; }
    platform::IAssetInstance* Clone() const override;
    void GetIdentifier(UTF8String& identifier) const override
    {
        identifier = UTF8String(_content.id);
    }
    const platform::IPropertyConstTable* GetGenericPropertyTable() const override
    {
        return _content.genericProperties ? &*_content.genericProperties : nullptr;
    }

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

/// A part of a store. Filled by one thread.
class Shelf
{
  public:
    explicit Shelf(Store& store) : _store(store) {}

    /// Holds the texts, values and tables of the assets.
    Arena& arena() { return _arena; }
    /// An empty asset; its address stays.
    Asset& add() { return _assets.emplace_back(_store, *_arena.make<AssetContent>(), false); }

  private:
    Store& _store;
    Arena _arena;
    std::deque<Asset> _assets;
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

    /// A new part.
    Shelf& addShelf() { return _shelves.emplace_back(*this); }

    void retain() { _references.fetch_add(1, std::memory_order_relaxed); }
    void release();
    /// References besides the one that the store starts with.
    std::size_t referenceCount() const { return _references.load(std::memory_order_acquire) - 1; }

  private:
    ~Store() = default;

    std::atomic<std::size_t> _references{1};
    std::deque<Shelf> _shelves;
};

} // namespace vyr::assetlib
