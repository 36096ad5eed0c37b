#include "Installed.h"

#include <exception>
#include <string_view>

#include <MaterialTranslation/Definitions.h>

#include "base/Paths.h"
#include "base/Text.h"

namespace vyr::cli
{

std::optional<std::filesystem::path> installedFile(const std::string& name)
try
{
    const auto kvor = MaterialTranslation::definitionFolders().kvor;
    const auto file = kvor.parent_path().parent_path() / base::pathFromUtf8(name);
    return base::isFile(file) ? std::optional(file) : std::nullopt;
}
catch (const std::exception&)
{
    return std::nullopt;
}

std::string fileUrl(const std::filesystem::path& file)
{
    constexpr std::string_view plain = "/-._~:";
    constexpr std::string_view digits = "0123456789ABCDEF";
    const std::string path = base::genericUtf8FromPath(base::tidyAbsolute(file));
    std::string url = path.starts_with('/') ? "file://" : "file:///";
    for (const char c : path)
        if (base::isAsciiAlphanumeric(c) || plain.find(c) != plain.npos)
            url += c;
        else
        {
            const auto byte = static_cast<unsigned char>(c);
            url += {'%', digits[byte / 16], digits[byte % 16]};
        }
    return url;
}

} // namespace vyr::cli
