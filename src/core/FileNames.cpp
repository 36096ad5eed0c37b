#include "core/FileNames.h"

#include <algorithm>

#include "core/OutputFolder.h"

namespace vyr::MaterialTranslation::core
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

/// At most that many bytes of a text, cut at the start of a UTF-8 character.
std::string cut(const std::string& text, std::size_t length)
{
    if (text.size() <= length)
        return text;
    while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80)
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

/// Capital letters first, first + step, ... last, each `shift` below its small letter: those of
/// Unicode's CaseFolding table (status C) that UTF-8 writes in two bytes and names are likely to have.
struct Capitals
{
    unsigned first;
    unsigned last;
    unsigned step;
    unsigned shift;
};

constexpr Capitals capitals[] = {
    {0x00C0, 0x00D6, 1, 32}, {0x00D8, 0x00DE, 1, 32}, // Latin
    {0x0100, 0x012E, 2, 1},  {0x0132, 0x0136, 2, 1},  {0x0139, 0x0147, 2, 1},
    {0x014A, 0x0176, 2, 1},  {0x0179, 0x017D, 2, 1},  {0x0391, 0x03A1, 1, 32},
    {0x03A3, 0x03AB, 1, 32},                          // Greek
    {0x0400, 0x040F, 1, 80}, {0x0410, 0x042F, 1, 32}, // Cyrillic
    {0x0460, 0x0480, 2, 1},  {0x048A, 0x04BE, 2, 1},
};

unsigned smallLetter(unsigned letter)
{
    for (const Capitals& row : capitals)
        if (letter >= row.first && letter <= row.last && (letter - row.first) % row.step == 0)
            return letter + row.shift;
    return letter;
}

/// The name in small letters.
std::string folded(std::string name)
{
    for (std::size_t i = 0; i < name.size(); ++i)
    {
        const auto byte = static_cast<unsigned char>(name[i]);
        if (byte >= 'A' && byte <= 'Z')
            name[i] = static_cast<char>(byte - 'A' + 'a');
        if ((byte & 0xE0) != 0xC0 || i + 1 == name.size())
            continue;
        const auto next = static_cast<unsigned char>(name[i + 1]);
        const unsigned letter = smallLetter((byte & 0x1FU) << 6 | (next & 0x3FU));
        name[i] = static_cast<char>(0xC0U | letter >> 6);
        name[++i] = static_cast<char>(0x80U | (letter & 0x3FU));
    }
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
           name.find('\0') != std::string_view::npos || isDeviceName(name);
}

std::string portableName(std::string_view name)
{
    std::string result(name);
    std::replace_if(result.begin(), result.end(), [](char c) { return !isPortable(c); }, '_');
    // Other systems drop these at the end, so that a reader would look for a name without them.
    while (result.ends_with('.') || result.ends_with(' '))
        result.pop_back();
    return result.empty() ? "_" : shortened(result);
}

std::string safeName(std::string_view name)
{
    const std::string portable = portableName(name);
    return isTreacherous(portable) ? "_" + portable : portable;
}

std::string FileNames::take(const std::string& name,
                            const std::function<bool(const std::string&)>& isFree)
{
    const std::size_t dot = extensionStart(name);
    std::string candidate = name;
    for (int number = 2; (isFree && !isFree(candidate)) || !_taken.insert(folded(candidate)).second;
         ++number)
        candidate = name.substr(0, dot) + "-" + std::to_string(number) + name.substr(dot);
    return candidate;
}

} // namespace vyr::MaterialTranslation::core
