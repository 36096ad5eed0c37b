#pragma once

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>

/// @file
/// Texts. All are UTF-8, and nothing here depends on the locale.
namespace vyr::base
{

constexpr bool isAsciiDigit(char c)
{
    return c >= '0' && c <= '9';
}

constexpr char toAsciiLower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr bool isAsciiAlphanumeric(char c)
{
    return isAsciiDigit(c) || (toAsciiLower(c) >= 'a' && toAsciiLower(c) <= 'z');
}

/// The bytes as what functions that write files take.
inline std::string_view textOf(std::span<const unsigned char> bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// A name for an element or a file from any text: its ASCII letters and digits, with "M" before a leading
/// digit; empty when it has none.
std::string plainName(std::string_view text);

/// Comparison of ASCII texts without regard to case.
bool equalsIgnoringCase(std::string_view a, std::string_view b);

/// The text in the form in which texts that differ only in upper and lower case are equal, as are the
/// composed and the decomposed form of a letter: Unicode's case folding and normal form C. Of a text
/// that is no UTF-8 only the ASCII letters are folded.
std::string foldCase(std::string_view text);

/// The text with every byte that is no part of well-formed UTF-8 replaced by U+FFFD.
std::string validUtf8(std::string_view text);

/// The text with everything that XML 1.0 cannot hold (control characters, broken UTF-8, surrogates,
/// U+FFFE and U+FFFF) replaced by U+FFFD, and tabs and line ends by spaces, which attribute values
/// lose anyway.
std::string xmlText(std::string_view text);

/// The text with control characters and broken UTF-8 written as escapes ("\n", "\x1b", "\u2028"), so that it
/// stays on one line, reads in one direction, and cannot talk to a terminal.
std::string printable(std::string_view text);

/// The text in double quotes for a message: printable, and cut when it is long.
std::string inQuotes(std::string_view text);

/// "a, b or c".
std::string listed(std::span<const std::string_view> words);

/// `; did you mean "..."?` when one of the candidates is near the word (letters left out, added,
/// changed, or in the wrong case), else empty.
std::string suggestion(std::string_view word, std::span<const std::string_view> candidates);

/// Number of characters (code points) of a text, not of bytes.
std::size_t characterCount(std::string_view text);

/// A place in a text, both numbers from 1; the column counts characters.
struct LineColumn
{
    std::size_t line = 1;
    std::size_t column = 1;
};

/// The place of the byte `offset`; of the end of the text for an offset behind it.
LineColumn lineColumnOf(std::string_view text, std::size_t offset);

/// The number that the whole text is, in decimal notation and finite, perhaps with a sign; nothing for
/// any other text.
template <class Number> std::optional<Number> numberFromText(std::string_view text)
{
    if (text.starts_with('+') && !text.starts_with("+-"))
        text.remove_prefix(1);
    // A float is read as a double, of which what is too small becomes 0.
    using Read = std::conditional_t<std::is_floating_point_v<Number>, double, Number>;
    Read read{};
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, read);
    if (error != std::errc() || stop != end)
        return std::nullopt;
    const auto number = static_cast<Number>(read);
    if constexpr (std::is_floating_point_v<Number>)
        if (!std::isfinite(number))
            return std::nullopt;
    return number;
}

} // namespace vyr::base
