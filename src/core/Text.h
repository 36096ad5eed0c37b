#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace vyr::MaterialTranslation::core
{

constexpr bool isAsciiDigit(char c)
{
    return c >= '0' && c <= '9';
}

constexpr bool isAsciiAlphanumeric(char c)
{
    return isAsciiDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// Comparison of ASCII texts without regard to case, independent of the locale.
bool equalsIgnoringCase(std::string_view a, std::string_view b);

/// `text` with everything that XML 1.0 cannot hold (control characters, broken UTF-8, surrogates,
/// U+FFFE and U+FFFF) replaced by U+FFFD, and tabs and line ends by spaces, which attribute values
/// lose anyway.
std::string xmlText(std::string_view text);

/// The file-system path that a UTF-8 text names.
std::filesystem::path pathFromUtf8(std::string_view text);

/// A path as UTF-8 text with the platform's own separators.
std::string pathToUtf8(const std::filesystem::path& path);

} // namespace vyr::MaterialTranslation::core
