#include "DocumentNames.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "Paths.h"

namespace vyr::cli
{
namespace
{

/// Names that Windows takes for devices, whatever the extension; those with a number follow below.
constexpr std::array<std::string_view, 4> devices = {"con", "prn", "aux", "nul"};
constexpr std::array<std::string_view, 2> numberedDevices = {"com", "lpt"};

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

char toLower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isDevice(std::string_view lowerCase)
{
    if (std::ranges::find(devices, lowerCase) != devices.end())
        return true;
    return lowerCase.size() == 4 && isDigit(lowerCase[3]) && lowerCase[3] != '0' &&
           std::ranges::find(numberedDevices, lowerCase.substr(0, 3)) != numberedDevices.end();
}

} // namespace

std::string DocumentNames::claim(const std::string& name, const std::string& owner)
{
    std::string lowerCase = name;
    std::ranges::transform(lowerCase, lowerCase.begin(), toLower);
    if (isDevice(lowerCase))
        return "some systems reserve the name \"" + name + "\" for a device";
    const auto [entry, isNew] = _owners.try_emplace(lowerCase, owner);
    return isNew ? std::string() : "the name \"" + name + "\" is that of " + entry->second + " too";
}

std::filesystem::path documentFile(const std::string& name)
{
    return pathFromUtf8(name + ".mtlx");
}

std::string documentName(const std::string& text)
{
    std::string name;
    for (const char c : text)
    {
        const bool isLetter = toLower(c) >= 'a' && toLower(c) <= 'z';
        if (isLetter || isDigit(c))
            name += c;
    }
    return !name.empty() && isDigit(name.front()) ? "M" + name : name;
}

} // namespace vyr::cli
