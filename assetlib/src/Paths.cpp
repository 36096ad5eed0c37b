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

fs::path tidyAbsolute(const fs::path& path)
{
    std::error_code error;
    const fs::path absolute = fs::absolute(path, error);
    if (error)
        return path;
    fs::path normal = absolute.lexically_normal();
    const bool leavesFolders = std::find(absolute.begin(), absolute.end(), "..") != absolute.end();
    // Behind a symbolic link ".." leads elsewhere than the text suggests.
    if (leavesFolders && !fs::equivalent(absolute, normal, error))
        return absolute;
    return normal;
}

} // namespace vyr::assetlib
