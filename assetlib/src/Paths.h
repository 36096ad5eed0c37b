#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace vyr::assetlib
{

/// The path that a UTF-8 text names, on every system.
std::filesystem::path pathOf(std::string_view text);

/// The UTF-8 text of a path, with forward slashes on every system.
std::string textOf(const std::filesystem::path& path);

/// The absolute path without "." and, where that leads to the same place, without "..".
std::filesystem::path tidyAbsolute(const std::filesystem::path& path);

} // namespace vyr::assetlib
