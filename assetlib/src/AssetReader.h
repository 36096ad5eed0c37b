#pragma once

#include "Loading.h"

namespace vyr::assetlib
{

struct JsonNode;

/// Reads one of the assets of a file's "materials" or "textures" into the store, with the assets inside
/// it. Its connections are gathered and filled in later.
/// @return null when there is nothing that others could connect to.
Asset* readAsset(const JsonNode& node, const Place& place, FileScope& file);

} // namespace vyr::assetlib
