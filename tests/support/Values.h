#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include <kelvor/platform/assets/IValue.h>

namespace vyr::support
{

/// A value of the test library. Any kind can be given to a property of any type: that is how a
/// property table lies.
using ValuePtr = std::shared_ptr<const kelvor::platform::assets::IValue>;
using Rgba = std::array<double, 4>;

/// No components at all when the list is empty.
ValuePtr scalarValue(std::vector<double> components, std::uint32_t unit = 0);
ValuePtr integerValue(std::vector<std::int32_t> components);
ValuePtr booleanValue(std::deque<bool> components);
ValuePtr colorValue(std::vector<Rgba> colors);
ValuePtr textValue(std::string text);
/// @param preferred what the preferred form delivers; the stored text when empty.
ValuePtr uriValue(std::string stored, std::string preferred = "");
/// @param selected indices into `choices`; they may lie outside.
ValuePtr choiceValue(const std::vector<std::string>& choices, std::vector<std::int32_t> selected);
/// A choice list that has no table of choices, whatever it says is selected.
ValuePtr choiceValueWithoutTable(std::vector<std::int32_t> selected);

} // namespace vyr::support
