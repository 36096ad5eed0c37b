#pragma once

#include <string>
#include <string_view>

namespace vyr::assetlib
{

/// The UTF-8 text with small letters, so that names that differ in upper and lower case become equal:
/// the letters of ASCII and the simple pairs of Latin, Greek and Cyrillic. Independent of the locale;
/// everything else passes unchanged.
std::string foldCase(std::string_view text);

} // namespace vyr::assetlib
