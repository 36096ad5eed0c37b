#include "base/Paths.h"

#include <algorithm>
#include <system_error>

#include "base/Text.h"

namespace vyr::base
{

namespace fs = std::filesystem;

namespace
{

// Windows, "Naming Files, Paths, and Namespaces".
constexpr std::string_view devices[] = {"con", "prn", "aux", "nul", "conin$", "conout$"};
constexpr std::string_view numberedDevices[] = {"com", "lpt"};

/// Bytes. The limit of common file systems is 255; what remains is for numbers and for the longer
/// encodings of other systems.
constexpr std::size_t longestName = 200;

constexpr bool isPortable(char c)
{
    constexpr std::string_view refused = "<>:\"/\\|?*";
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x20 && byte != 0x7F && refused.find(c) == std::string_view::npos;
}

/// Position of the last dot, if it separates an extension, else the length.
std::size_t extensionStart(std::string_view name)
{
    const std::size_t dot = name.rfind('.');
    return dot == std::string_view::npos || dot == 0 ? name.size() : dot;
}

/// At most that many bytes of a text, cut at the start of a UTF-8 character.
std::string cut(const std::string& text, std::size_t length)
{
    if (text.size() <= length)
        return text;
    while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U)
        --length;
    return text.substr(0, length);
}

/// Cuts the part before the extension, and an extension only when it is no common one.
std::string shortened(const std::string& name)
{
    if (name.size() <= longestName)
        return name;
    const std::size_t dot = extensionStart(name);
    const std::string extension = cut(name.substr(dot), longestName / 2);
    return cut(name.substr(0, dot), longestName - extension.size()) + extension;
}

std::string narrow(const std::u8string& text)
{
    return {text.begin(), text.end()};
}

} // namespace

fs::path pathFromUtf8(std::string_view text)
{
    return fs::path(std::u8string(text.begin(), text.end()));
}

std::string utf8FromPath(const fs::path& path)
{
    return narrow(path.u8string());
}

std::string genericUtf8FromPath(const fs::path& path)
{
    return narrow(path.generic_u8string());
}

// Where wide characters are UTF-32, the path class would convert them by the rules of the locale, but
// not those of a std::u32string.
std::wstring wideFromUtf8(std::string_view text)
{
    if constexpr (sizeof(wchar_t) == sizeof(char32_t))
    {
        const std::u32string characters = pathFromUtf8(text).u32string();
        return {characters.begin(), characters.end()};
    }
    else
        return pathFromUtf8(text).wstring();
}

std::string utf8FromWide(const std::wstring& text)
{
    if constexpr (sizeof(wchar_t) == sizeof(char32_t))
        return genericUtf8FromPath(std::u32string(text.begin(), text.end()));
    else
        return genericUtf8FromPath(fs::path(text));
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
    return leavesFolders && !isSameFile(absolute, normal) ? absolute : normal;
}

bool isFile(const fs::path& path)
{
    std::error_code error;
    return fs::is_regular_file(path, error);
}

bool isSameFile(const fs::path& a, const fs::path& b)
{
    std::error_code error;
    return fs::equivalent(a, b, error) && !error;
}

std::string placeKey(const fs::path& path)
{
    std::error_code error;
    const fs::path whole = fs::absolute(path, error).lexically_normal();
    const fs::path folder = fs::weakly_canonical(whole.parent_path(), error);
    return utf8FromPath((error ? whole.parent_path() : folder) / "") +
           foldCase(utf8FromPath(whole.filename()));
}

std::vector<std::string> placeKeys(const fs::path& path)
{
    constexpr std::size_t mostLinks = 40;
    std::vector<std::string> keys{placeKey(path)};
    std::error_code error;
    for (fs::path at = path; keys.size() < mostLinks && fs::is_symlink(at, error);)
    {
        at = at.parent_path() / fs::read_symlink(at, error);
        keys.push_back(placeKey(at));
    }
    return keys;
}

std::string_view lastComponent(std::string_view path)
{
    return path.substr(path.find_last_of("/\\") + 1);
}

bool isDeviceName(std::string_view name)
{
    std::string_view stem = name.substr(0, name.find('.'));
    while (stem.ends_with(' '))
        stem.remove_suffix(1);
    const auto is = [&](std::string_view device) { return equalsIgnoringCase(stem, device); };
    if (std::ranges::any_of(devices, is))
        return true;
    if (stem.size() != 4 || !isAsciiDigit(stem.back()))
        return false;
    stem.remove_suffix(1);
    return std::ranges::any_of(numberedDevices, is);
}

bool isUnsafeName(std::string_view name)
{
    const bool drive = name.size() >= 2 && name[1] == ':';
    return name.empty() || name == "." || name == ".." || drive ||
           name.find('\0') != std::string_view::npos || isDeviceName(name);
}

std::string portableName(std::string_view name)
{
    std::string result(name);
    std::ranges::replace_if(result, [](char c) { return !isPortable(c); }, '_');
    // Other systems drop these at the end, so that a reader would look for a name without them.
    while (result.ends_with('.') || result.ends_with(' '))
        result.pop_back();
    return result.empty() ? "_" : shortened(result);
}

std::string safeName(std::string_view name)
{
    const std::string portable = portableName(name);
    return isUnsafeName(portable) ? "_" + portable : portable;
}

std::string numberedName(const std::string& name, int number)
{
    const std::size_t dot = extensionStart(name);
    return name.substr(0, dot) + "-" + std::to_string(number) + name.substr(dot);
}

bool UniqueNames::give(const std::string& name)
{
    return _taken.insert(foldCase(name)).second;
}

} // namespace vyr::base
