#pragma once

#include <string_view>

namespace vyr::MaterialTranslation::definitions
{

/// Whether nothing is left over in a text that MaterialX can read as a value of the type. It stops where a
/// number ends: of "0,5" it takes the 0.
/// @param type any; texts of types without numbers are whole.
bool isWhole(std::string_view text, std::string_view type);

} // namespace vyr::MaterialTranslation::definitions
