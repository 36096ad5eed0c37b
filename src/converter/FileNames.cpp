#include "converter/FileNames.h"

#include <algorithm>

#include "core/OutputFolder.h"

namespace vyr::MaterialTranslation::converter
{

namespace
{

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

/// Cuts the part before the extension, at the start of a UTF-8 character.
std::string shortened(const std::string& name)
{
    if (name.size() <= longestName)
        return name;
    const std::size_t dot = extensionStart(name);
    const std::string extension = name.substr(dot).substr(0, longestName / 2);
    std::size_t length = longestName - extension.size();
    while (length > 0 && (static_cast<unsigned char>(name[length]) & 0xC0) == 0x80)
        --length;
    return name.substr(0, length) + extension;
}

std::string folded(std::string name)
{
    for (char& c : name)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return name;
}

} // namespace

std::string_view lastComponent(std::string_view path)
{
    return path.substr(path.find_last_of("/\\") + 1);
}

bool isTreacherous(std::string_view name)
{
    const bool drive = name.size() >= 2 && name[1] == ':';
    return name.empty() || name == "." || name == ".." || drive ||
           name.find('\0') != std::string_view::npos || core::isDeviceName(name);
}

std::string portableName(std::string_view name)
{
    std::string result(name);
    std::replace_if(result.begin(), result.end(), [](char c) { return !isPortable(c); }, '_');
    result = shortened(result);
    if (result.ends_with('.') || result.ends_with(' '))
        result.back() = '_';
    return result;
}

std::string FileNames::take(const std::string& name)
{
    std::string candidate = name;
    for (int number = 2; !_taken.insert(folded(candidate)).second; ++number)
    {
        const std::size_t dot = extensionStart(name);
        candidate = name.substr(0, dot) + "-" + std::to_string(number) + name.substr(dot);
    }
    return candidate;
}

} // namespace vyr::MaterialTranslation::converter
