#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace vyr::base
{

/// MaterialX's names of the kinds of units.
inline constexpr const char* distanceUnitType = "distance";
inline constexpr const char* angleUnitType = "angle";
inline constexpr const char* luminanceUnitType = "luminance";

/// A unit of the asset library's values, by the names that documents use.
struct UnitRow
{
    /// As kelvor::platform::assets::UnitCode.
    std::uint32_t code;
    const char* type;
    const char* name;
    /// In metres, degrees, or candela per square metre.
    double size;
};

/// All units. The lengths come first, in the order in which records and overlays count them.
std::span<const UnitRow> units();

/// How many of them are lengths.
inline constexpr std::size_t lengthUnitCount = 10;

/// A unit and its type as a document states them. Either may be empty.
struct Unit
{
    std::string name;
    std::string type;

    friend bool operator==(const Unit&, const Unit&) = default;
};

/// The size of a code's unit if it is of that kind; else 1: numbers without a unit are in metres or degrees.
double unitSize(std::uint32_t code, std::string_view type);

/// The unit of a code. An unknown code of a known kind has an empty name; any other unknown code leaves
/// both empty. Values are never converted: a document states the asset's own unit.
Unit unitForCode(std::uint32_t code);

/// The length unit of that number; "centimeter" for a number outside the table.
const char* lengthUnitName(std::int32_t index);

} // namespace vyr::base
