#include "core/Text.h"

#include <algorithm>
#include <cstdint>

namespace vyr::MaterialTranslation::core
{

namespace
{

constexpr char toLower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Length of the well-formed UTF-8 sequence at the start of `text` and its code point; length 0
/// when the sequence is broken. The ranges are those of table 3-7 of the Unicode standard, by way
/// of the smallest code point that each length may hold.
struct CodePoint
{
    std::size_t length = 0;
    std::uint32_t value = 0;
};

CodePoint decode(std::string_view text)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byte(0);
    if (first < 0x80)
        return {1, first};
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || text.size() < length)
        return {};
    std::uint32_t value = first & (0xFFU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i)
    {
        if ((byte(i) & 0xC0) != 0x80)
            return {};
        value = (value << 6) | (byte(i) & 0x3FU);
    }
    constexpr std::uint32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool surrogate = value >= 0xD800 && value <= 0xDFFF;
    if (value < smallest[length] || value > 0x10FFFF || surrogate)
        return {};
    return {length, value};
}

constexpr bool isXmlCharacter(std::uint32_t c)
{
    return c >= 0x20 && c != 0x7F && c != 0xFFFE && c != 0xFFFF;
}

} // namespace

bool equalsIgnoringCase(std::string_view a, std::string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return toLower(x) == toLower(y); });
}

std::string xmlText(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    while (!text.empty())
    {
        const CodePoint c = decode(text);
        const std::size_t length = c.length == 0 ? 1 : c.length;
        if (c.length == 1 && (c.value == '\t' || c.value == '\n' || c.value == '\r'))
            result += ' ';
        else if (c.length == 0 || !isXmlCharacter(c.value))
            result += "\xEF\xBF\xBD";
        else
            result += text.substr(0, length);
        text.remove_prefix(length);
    }
    return result;
}

std::filesystem::path pathFromUtf8(std::string_view text)
{
    return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

std::string pathToUtf8(const std::filesystem::path& path)
{
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

} // namespace vyr::MaterialTranslation::core
