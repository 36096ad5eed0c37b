#pragma once

#include <cstdint>
#include <optional>

#include "Json.h"

namespace vyr::assetlib
{

/// The code of a value's unit, from its name or from the code itself, which may be of any host's own.
std::optional<std::uint32_t> readUnit(const JsonNode& node, const Place& place, Report& report);

/// The number of a length unit as OverlayTexture::unit counts them, from its name or its number.
std::optional<std::int32_t> readLengthUnit(const JsonNode& node, const Place& place,
                                           Report& report);

} // namespace vyr::assetlib
