#pragma once

/// @file
/// The instances of the test library. They stay in memory until resetHost(), so that a use after the
/// last reference is reported as a breach instead of crashing.

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <kelvor/platform/assets/IAssetInstance.h>
#include <kelvor/platform/assets/IProperty.h>

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

struct PropertyRecord
{
    std::string name;
    std::uint32_t type = 0;
    ValuePtr value;
    std::vector<AssetPtr> connected;
    Connections connections = Connections::True;
};

/// All that an asset consists of; fixed once an instance was made of it, and shared by its clones.
struct AssetContent
{
    std::string identifier;
    std::string displayName;
    std::string description;
    std::optional<std::string> schema;
    std::optional<std::string> ownName;
    bool workingNames = true;
    bool listsProperties = true;
    bool clonable = true;
    std::deque<PropertyRecord> properties;
    std::optional<std::deque<PropertyRecord>> genericProperties;
};

/// A new instance with one reference.
AssetPtr makeAsset(AssetContent content);

/// Another reference to the same instance.
AssetPtr shareAsset(const AssetPtr& asset);

/// Frees the instances that nobody holds, and counts clones from 0.
void resetAssetPool();

} // namespace vyr::support
