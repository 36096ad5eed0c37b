#pragma once

/// @file
/// Assets, properties and values of the test library.

#include <array>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <kelvor/platform/assets/IAssetDefinition.h>
#include <kelvor/platform/assets/IAssetIdentity.h>
#include <kelvor/platform/assets/IAssetInstance.h>
#include <kelvor/platform/assets/IProperty.h>
#include <kelvor/platform/assets/IValue.h>

#include "support/Host.h"

namespace vyr::support
{

namespace kpa = kelvor::platform::assets;
using kelvor::platform::core::string::UTF8String;

/// A value. Any kind can be given to a property of any type: that is how a property table lies.
using ValuePtr = std::shared_ptr<const kpa::IValue>;
using Rgba = std::array<double, 4>;

/// No components at all when the list is empty.
ValuePtr scalarValue(const std::vector<double>& components, std::uint32_t unit = 0);
ValuePtr integerValue(const std::vector<double>& components);
ValuePtr booleanValue(const std::vector<double>& components);
ValuePtr colorValue(std::vector<Rgba> colors);
ValuePtr textValue(std::string text);
/// @param preferred what the preferred form delivers; the stored text when empty.
ValuePtr uriValue(std::string stored, std::string preferred = "");
/// @param choices no table of choices when empty.
/// @param selected indices into `choices`; they may lie outside.
ValuePtr choiceValue(const std::vector<std::string>& choices, std::vector<std::int32_t> selected);

/// An object of the interfaces that only knows its name.
template <class Interface> class Named final : public Interface
{
  public:
    explicit Named(std::string name) : _name(std::move(name)) {}
    void GetName(UTF8String& name) const override { name = passing(_name); }

  private:
    std::string _name;
};

/// Owns one reference.
using AssetPtr = std::unique_ptr<kpa::IAssetInstance, kpa::IAssetInstanceDeleter>;

struct TestProperty final : kpa::IProperty
{
    void GetIdentifier(UTF8String& identifier) const override { identifier = passing(name); }
    std::uint32_t GetType() const override { return passing(type); }
    const kpa::IValue* GetValue() const override { return passing(value.get()); }
    bool HasConnections() const override
    {
        return passing(claimsConnections || !connected.empty());
    }
    std::size_t GetConnectionCount() const override { return passing(connected.size()); }
    kpa::IAssetInstance* GetConnectedAsset(std::size_t index) const override;

    std::string name;
    std::uint32_t type = 0;
    ValuePtr value;
    /// May hold null.
    std::vector<AssetPtr> connected;
    bool claimsConnections = false;
};

struct PropertyTable final : kpa::IPropertyConstTable
{
    const TestProperty* FindProperty(const UTF8String& wanted) const override;
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
    std::optional<Named<kpa::IAssetDefinition>> definition;
    std::optional<Named<kpa::IAssetIdentity>> identity;
    bool hasWorkingNames = true;
    bool clonable = true;
    PropertyTable table;
    std::optional<PropertyTable> genericTable;
};

/// A new instance with one reference. It stays in memory until resetHost(), so that a use after the
/// last reference is reported as a breach instead of crashing.
AssetPtr makeAsset(AssetContent content);
/// Another reference to the same instance; null for null.
AssetPtr shareAsset(const AssetPtr& asset);
/// Frees the instances that nobody holds, and counts clones from 0.
void resetAssetPool();

} // namespace vyr::support
