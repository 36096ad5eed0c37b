#pragma once

/// @file
/// The instances of the test library. They stay in memory until resetHost(), so that a use after the
/// last reference is reported as a breach instead of crashing.

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <kelvor/platform/assets/IAssetDefinition.h>
#include <kelvor/platform/assets/IAssetIdentity.h>
#include <kelvor/platform/assets/IAssetInstance.h>
#include <kelvor/platform/assets/IProperty.h>

#include "support/Host.h"
#include "support/Values.h"

namespace vyr::support
{

/// Owns one reference.
using AssetPtr = std::unique_ptr<kelvor::platform::assets::IAssetInstance,
                                 kelvor::platform::assets::IAssetInstanceDeleter>;

/// How a property presents its connected assets.
enum class Connections
{
    /// As they are.
    True,
    /// Has-connections is true and the count 0.
    ClaimedButNone,
    /// Has-connections is true and the count 1, but the asset is null.
    ClaimedButNull,
};

struct TestProperty final : kelvor::platform::assets::IProperty
{
    void GetIdentifier(kelvor::platform::core::string::UTF8String& identifier) const override
    {
        identifier = passing(name);
    }
    std::uint32_t GetType() const override { return passing(type); }
    const kelvor::platform::assets::IValue* GetValue() const override
    {
        return passing(value.get());
    }
    bool HasConnections() const override
    {
        return passing(connections != Connections::True || !connected.empty());
    }
    std::size_t GetConnectionCount() const override
    {
        return passing(connections == Connections::ClaimedButNull ? 1 : connected.size());
    }
    kelvor::platform::assets::IAssetInstance* GetConnectedAsset(std::size_t index) const override;

    std::string name;
    std::uint32_t type = 0;
    ValuePtr value;
    std::vector<AssetPtr> connected;
    Connections connections = Connections::True;
};

struct PropertyTable final : kelvor::platform::assets::IPropertyConstTable
{
    const TestProperty* FindProperty(
        const kelvor::platform::core::string::UTF8String& name) const override;
    std::size_t GetPropertyCount() const override { return passing(properties.size()); }
    const TestProperty* GetProperty(std::size_t index) const override
    {
        return entryAt(properties, index);
    }

    std::deque<TestProperty> properties;
};

/// All that an asset consists of; fixed once an instance was made of it, and shared by its clones.
struct AssetContent
{
    std::string identifier;
    std::string displayName;
    std::string description;
    std::optional<Named<kelvor::platform::assets::IAssetDefinition>> definition;
    std::optional<Named<kelvor::platform::assets::IAssetIdentity>> identity;
    bool clonable = true;
    PropertyTable table;
    std::optional<PropertyTable> genericTable;
};

/// A new instance with one reference.
AssetPtr makeAsset(AssetContent content);

/// Another reference to the same instance.
AssetPtr shareAsset(const AssetPtr& asset);

/// Frees the instances that nobody holds, and counts clones from 0.
void resetAssetPool();

} // namespace vyr::support
