#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Assets.h"
#include "Loading.h"

namespace vyr::assetlib
{

struct JsonNode;

/// Whose properties are read.
struct PropertyOwner
{
    FileScope& file;
    /// For messages: the id of the asset, or of the asset around it.
    std::string_view id;
};

/// A property, and the entries of its "connected" list, to which the reader of the asset attends.
struct PropertyParts
{
    Property property;
    const JsonNode* connected = nullptr;
};

/// Reads a property in its long or short form.
std::optional<PropertyParts> readProperty(const JsonNode& node, const Place& place,
                                          const PropertyOwner& owner);

} // namespace vyr::assetlib
