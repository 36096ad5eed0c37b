#include "Paths.h"

#include <system_error>

#include "Console.h"

namespace vyr::cli
{

std::filesystem::path pathFromUtf8(std::string_view text)
{
    return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

std::string utf8FromPath(const std::filesystem::path& path)
{
    const std::u8string text = path.u8string();
    return std::string(text.begin(), text.end());
}

std::optional<OutputFolder> makeOutputFolder(const std::string& path)
{
    OutputFolder folder;
    folder.shown = pathFromUtf8(path);
    std::error_code error;
    std::filesystem::create_directories(folder.shown, error);
    if (std::filesystem::is_directory(folder.shown))
        error.clear();
    else if (!error)
        error = std::make_error_code(std::errc::not_a_directory);
    if (!error)
        folder.absolute = std::filesystem::absolute(folder.shown, error).lexically_normal();
    if (!error)
        folder.canonical = std::filesystem::canonical(folder.shown, error);
    if (error)
    {
        complain("vyr-mtlx: " + path + ": " + error.message());
        return std::nullopt;
    }
    return folder;
}

std::filesystem::path placeOf(const std::filesystem::path& file)
{
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(file, error);
    const std::filesystem::path folder =
        std::filesystem::weakly_canonical(absolute.parent_path(), error);
    return error ? absolute.lexically_normal() : folder / absolute.filename();
}

} // namespace vyr::cli
