#pragma once

#include <span>
#include <string>
#include <string_view>

namespace vyr::assetlib
{

/// The text with its control characters escaped, so that it stays on one line.
std::string printable(std::string_view text);

/// The text in double quotes for a message: printable, and cut when it is long.
std::string inQuotes(std::string_view text);

/// "a, b or c".
std::string listed(std::span<const std::string_view> words);

/// `; did you mean "..."?` when one of the candidates is near the word (letters left out, added,
/// changed, or in the wrong case), else empty.
std::string suggestion(std::string_view word, std::span<const std::string_view> candidates);

} // namespace vyr::assetlib
