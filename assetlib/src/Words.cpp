#include "Words.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <numeric>
#include <utility>
#include <vector>

namespace vyr::assetlib
{

namespace
{

constexpr std::size_t longestQuote = 80;

char lowerCase(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
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
            const std::size_t changed =
                diagonal + (lowerCase(a[i - 1]) != lowerCase(b[j - 1]) ? 1 : 0);
            diagonal = std::exchange(row[j], std::min({row[j] + 1, row[j - 1] + 1, changed}));
        }
    }
    return row.back();
}

} // namespace

std::string printable(std::string_view text)
{
    std::string result;
    for (const char c : text)
    {
        if (static_cast<unsigned char>(c) >= 0x20 && c != 0x7F)
        {
            result += c;
            continue;
        }
        std::array<char, 8> escaped{};
        std::snprintf(escaped.data(), escaped.size(), "\\u%04x", static_cast<unsigned>(c));
        result += escaped.data();
    }
    return result;
}

std::string inQuotes(std::string_view text)
{
    std::size_t length = std::min(text.size(), longestQuote);
    while (length < text.size() && length > 0 &&
           (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80)
        --length; // not in the middle of a character
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

} // namespace vyr::assetlib
