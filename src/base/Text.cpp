#include "base/Text.h"

#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <numeric>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <utf8proc.h>

namespace vyr::base
{

namespace
{

constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";

bool isAscii(std::string_view text)
{
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

std::string asciiLower(std::string_view text)
{
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), toAsciiLower);
    return lower;
}

/// The code point at the start of a text; length 0 when no well-formed UTF-8 is there.
struct CodePoint
{
    std::size_t length = 0;
    utf8proc_int32_t value = 0;
};

CodePoint decode(std::string_view text)
{
    CodePoint result;
    const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                         static_cast<utf8proc_ssize_t>(text.size()), &result.value);
    result.length = length > 0 ? static_cast<std::size_t>(length) : 0;
    return result;
}

/// Calls `append(codePoint, bytes)` for each character, and replaces what is none.
template <class Append> std::string rewritten(std::string_view text, Append append)
{
    std::string result;
    result.reserve(text.size());
    while (!text.empty())
    {
        const CodePoint c = decode(text);
        if (c.length == 0)
            result += replacementCharacter;
        else
            append(result, c.value, text.substr(0, c.length));
        text.remove_prefix(std::max<std::size_t>(c.length, 1));
    }
    return result;
}

constexpr bool isControl(std::int32_t c)
{
    return c < 0x20 || c == 0x7F;
}

/// What ends a line, controls a terminal or turns the direction of a text, beyond ASCII.
constexpr bool rulesLines(std::int32_t c)
{
    return (c >= 0x80 && c < 0xA0) || (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

/// The number of letters to leave out, add or change that make one word of the other (the distance of
/// Levenshtein), without regard to case.
std::size_t distance(std::string_view a, std::string_view b)
{
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i)
    {
        std::size_t diagonal = std::exchange(row[0], i);
        for (std::size_t j = 1; j <= b.size(); ++j)
        {
            const bool differ = toAsciiLower(a[i - 1]) != toAsciiLower(b[j - 1]);
            const std::size_t changed = diagonal + (differ ? 1 : 0);
            diagonal = std::exchange(row[j], std::min({row[j] + 1, row[j - 1] + 1, changed}));
        }
    }
    return row.back();
}

constexpr bool startsCharacter(char c)
{
    return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
}

} // namespace

std::string plainName(std::string_view text)
{
    std::string name;
    std::ranges::copy_if(text, std::back_inserter(name), isAsciiAlphanumeric);
    return !name.empty() && isAsciiDigit(name.front()) ? "M" + name : name;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b)
{
    return std::ranges::equal(a, b, {}, toAsciiLower, toAsciiLower);
}

std::string foldCase(std::string_view text)
{
    if (isAscii(text))
        return asciiLower(text);
    utf8proc_uint8_t* folded = nullptr;
    constexpr auto options =
        static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_COMPOSE | UTF8PROC_CASEFOLD);
    const auto length = utf8proc_map(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                     static_cast<utf8proc_ssize_t>(text.size()), &folded, options);
    const std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> owner(folded, &std::free);
    return length < 0 ? asciiLower(text)
                      : std::string(folded, folded + static_cast<std::size_t>(length));
}

std::string validUtf8(std::string_view text)
{
    if (isAscii(text))
        return std::string(text);
    return rewritten(text, [](std::string& result, std::int32_t, std::string_view bytes)
                     { result += bytes; });
}

std::string xmlText(std::string_view text)
{
    const auto append = [](std::string& result, std::int32_t c, std::string_view bytes)
    {
        if (c == '\t' || c == '\n' || c == '\r')
            result += ' ';
        else
            result += isControl(c) || c == 0xFFFE || c == 0xFFFF ? replacementCharacter : bytes;
    };
    const auto isPlain = [](char c) { return c >= 0x20 && c < 0x7F; };
    return std::ranges::all_of(text, isPlain) ? std::string(text) : rewritten(text, append);
}

std::string printable(std::string_view text)
{
    if (std::ranges::all_of(text, [](char c) { return c >= 0x20 && c < 0x7F; }))
        return std::string(text);
    std::string result;
    result.reserve(text.size());
    while (!text.empty())
    {
        const CodePoint c = decode(text);
        const auto byte = static_cast<unsigned char>(text.front());
        const std::size_t length = std::max<std::size_t>(c.length, 1);
        if (byte == '\n')
            result += "\\n";
        else if (c.length == 0 || isControl(c.value))
            result += fmt::format("\\x{:02x}", byte);
        else if (rulesLines(c.value))
            result += fmt::format("\\u{:04x}", c.value);
        else
            result += text.substr(0, length);
        text.remove_prefix(length);
    }
    return result;
}

std::string inQuotes(std::string_view text)
{
    constexpr std::size_t longest = 80;
    std::size_t length = std::min(text.size(), longest);
    while (length < text.size() && length > 0 && !startsCharacter(text[length]))
        --length;
    return '"' + printable(text.substr(0, length)) + (length < text.size() ? "...\"" : "\"");
}

std::string listed(std::span<const std::string_view> words)
{
    std::string result;
    for (std::size_t i = 0; i < words.size(); ++i)
    {
        if (i > 0)
            result += i + 1 == words.size() ? " or " : ", ";
        result += words[i];
    }
    return result;
}

std::string suggestion(std::string_view word, std::span<const std::string_view> candidates)
{
    constexpr std::size_t longestWord = 64;
    if (word.size() > longestWord)
        return {};
    std::size_t nearest = std::max<std::size_t>(1, word.size() / 3) + 1;
    std::string_view best;
    for (const std::string_view candidate : candidates)
    {
        const std::size_t letters = distance(word, candidate);
        if (letters < nearest)
        {
            nearest = letters;
            best = candidate;
        }
    }
    return best.empty() ? std::string() : "; did you mean " + inQuotes(best) + '?';
}

std::size_t characterCount(std::string_view text)
{
    return static_cast<std::size_t>(std::ranges::count_if(text, startsCharacter));
}

LineColumn lineColumnOf(std::string_view text, std::size_t offset)
{
    const std::string_view before = text.substr(0, std::min(offset, text.size()));
    const auto lines = static_cast<std::size_t>(std::ranges::count(before, '\n'));
    return {lines + 1, characterCount(before.substr(before.rfind('\n') + 1)) + 1};
}

} // namespace vyr::base
