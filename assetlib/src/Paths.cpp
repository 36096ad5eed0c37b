#include "Paths.h"

#include <algorithm>
#include <system_error>

namespace vyr::assetlib
{

namespace fs = std::filesystem;

fs::path pathOf(std::string_view text)
{
    return fs::path(std::u8string(text.begin(), text.end()));
}

std::string textOf(const fs::path& path)
{
    const std::u8string text = path.generic_u8string();
    return std::string(text.begin(), text.end());
}

// Where wide characters are UTF-32, the path class would convert them by the rules of the locale, but
// not those of a std::u32string.
std::wstring wideOf(std::string_view text)
{
    if constexpr (sizeof(wchar_t) == sizeof(char32_t))
    {
        const std::u32string characters = pathOf(text).u32string();
        return std::wstring(characters.begin(), characters.end());
    }
    else
        return pathOf(text).wstring();
}

std::string narrowOf(const std::wstring& text)
{
    if constexpr (sizeof(wchar_t) == sizeof(char32_t))
        return textOf(std::u32string(text.begin(), text.end()));
    else
        return textOf(fs::path(text));
}

fs::path tidyAbsolute(const fs::path& path)
{
    std::error_code error;
    const fs::path absolute = fs::absolute(path, error);
    if (error)
        return path;
    fs::path normal = absolute.lexically_normal();
    const bool leavesFolders = std::ranges::find(absolute, "..") != absolute.end();
    // Behind a symbolic link ".." leads elsewhere than the text suggests.
    if (leavesFolders && !fs::equivalent(absolute, normal, error))
        return absolute;
    return normal;
}

} // namespace vyr::assetlib
