#pragma once

#include <optional>
#include <string>

#include "Report.h"

namespace vyr::assetlib
{

/// The bytes of the report's file. Reports why there are none: no such file, a folder, no permission,
/// empty, or larger than any library.
std::optional<std::string> readFile(Report& report);

} // namespace vyr::assetlib
