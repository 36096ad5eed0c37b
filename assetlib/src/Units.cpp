#include "Units.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>

#include <kelvor/platform/assets/UnitCode.h>

#include "Fields.h"
#include "Words.h"

namespace vyr::assetlib
{

namespace
{

namespace platform = kelvor::platform::assets;

struct UnitRow
{
    std::string_view name;
    platform::UnitCode code;
};

/// The lengths come first, in the order in which overlays count them.
constexpr std::array units = {
    UnitRow{"nanometer", platform::eUnit_Nanometer},
    UnitRow{"micron", platform::eUnit_Micron},
    UnitRow{"millimeter", platform::eUnit_Millimeter},
    UnitRow{"centimeter", platform::eUnit_Centimeter},
    UnitRow{"inch", platform::eUnit_Inch},
    UnitRow{"foot", platform::eUnit_Foot},
    UnitRow{"yard", platform::eUnit_Yard},
    UnitRow{"meter", platform::eUnit_Meter},
    UnitRow{"kilometer", platform::eUnit_Kilometer},
    UnitRow{"mile", platform::eUnit_Mile},
    UnitRow{"radians", platform::eUnit_Radian},
    UnitRow{"degrees", platform::eUnit_Degree},
    UnitRow{"candelapersquaremeter", platform::eUnit_CandelaPerSquareMeter},
    UnitRow{"footlambert", platform::eUnit_FootLambert},
    UnitRow{"candelapersquarefoot", platform::eUnit_CandelaPerSquareFoot},
};
constexpr std::size_t lengthCount = 10;

constexpr auto unitNames = []
{
    std::array<std::string_view, units.size()> names;
    for (std::size_t i = 0; i < names.size(); ++i)
        names[i] = units[i].name;
    return names;
}();

/// Index in `units` of the name, which is one of the first `count`.
std::optional<std::size_t> readUnitName(const JsonNode& node, const Place& place, Report& report,
                                        std::size_t count)
{
    const auto names = std::span(unitNames).first(count);
    const auto found = std::ranges::find(names, node.text());
    if (found != names.end())
        return static_cast<std::size_t>(found - names.begin());
    const std::string near = suggestion(node.text(), names);
    report.error(place, "unknown unit " + inQuotes(node.text()) +
                            (near.empty() ? "; expected " + listed(names) : near));
    return std::nullopt;
}

} // namespace

std::optional<std::uint32_t> readUnit(const JsonNode& node, const Place& place, Report& report)
{
    if (node.kind() == JsonNode::Kind::Text)
    {
        const auto index = readUnitName(node, place, report, units.size());
        return index ? std::optional<std::uint32_t>(units[*index].code) : std::nullopt;
    }
    if (node.kind() != JsonNode::Kind::Number)
    {
        report.error(place, "expected a unit's name or its code");
        return std::nullopt;
    }
    const auto code =
        readWhole(node, place, report, 0.0, std::numeric_limits<std::uint32_t>::max());
    return code ? std::optional(static_cast<std::uint32_t>(*code)) : std::nullopt;
}

std::optional<std::int32_t> readLengthUnit(const JsonNode& node, const Place& place, Report& report)
{
    if (node.kind() == JsonNode::Kind::Text)
    {
        const auto index = readUnitName(node, place, report, lengthCount);
        return index ? std::optional(static_cast<std::int32_t>(*index)) : std::nullopt;
    }
    if (node.kind() != JsonNode::Kind::Number)
    {
        report.error(place, "expected the name of a length unit or its number");
        return std::nullopt;
    }
    const auto number = readWhole(node, place, report, 0.0, lengthCount - 1);
    return number ? std::optional(static_cast<std::int32_t>(*number)) : std::nullopt;
}

} // namespace vyr::assetlib
