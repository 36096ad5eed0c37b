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

/// UTF-8 in the platform's wide form and back, whatever the locale. A text that is not well formed throws
/// an exception.
std::wstring wideOf(std::string_view text);
std::string narrowOf(const std::wstring& text);

/// The absolute path without "." and, where that leads to the same place, without "..".
std::filesystem::path tidyAbsolute(const std::filesystem::path& path);

} // namespace vyr::assetlib
