#pragma once

#include <optional>

#include <vyr/assetlib/Overlays.h>

#include "Loading.h"

namespace vyr::assetlib
{

struct JsonNode;

/// Reads one of a file's "overlays". Nothing when it is not known what kind of overlay it is.
std::optional<Overlay> readOverlay(const JsonNode& node, const Place& place, FileScope& file);

} // namespace vyr::assetlib
