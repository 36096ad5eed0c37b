#include "base/Units.h"

#include <algorithm>
#include <iterator>

#include <kelvor/platform/assets/UnitCode.h>

namespace vyr::base
{

namespace
{

using namespace kelvor::platform::assets;

constexpr UnitRow rows[] = {
    {eUnit_Nanometer, distanceUnitType, "nanometer"},
    {eUnit_Micron, distanceUnitType, "micron"},
    {eUnit_Millimeter, distanceUnitType, "millimeter"},
    {eUnit_Centimeter, distanceUnitType, "centimeter"},
    {eUnit_Inch, distanceUnitType, "inch"},
    {eUnit_Foot, distanceUnitType, "foot"},
    {eUnit_Yard, distanceUnitType, "yard"},
    {eUnit_Meter, distanceUnitType, "meter"},
    {eUnit_Kilometer, distanceUnitType, "kilometer"},
    {eUnit_Mile, distanceUnitType, "mile"},
    {eUnit_Radian, angleUnitType, "radians"},
    {eUnit_Degree, angleUnitType, "degrees"},
    {eUnit_CandelaPerSquareMeter, luminanceUnitType, "candelapersquaremeter"},
    {eUnit_FootLambert, luminanceUnitType, "footlambert"},
    {eUnit_CandelaPerSquareFoot, luminanceUnitType, "candelapersquarefoot"},
};
constexpr std::int32_t centimeterIndex = 3;

struct UnitFamily
{
    std::uint32_t bits;
    const char* type;
};

// A code belongs to the first family whose bits it has. Luminance codes have the distance bit too,
// so luminance comes first.
constexpr UnitFamily families[] = {
    {0x37000, luminanceUnitType},
    {0x2000, distanceUnitType},
    {0x8000, angleUnitType},
};

} // namespace

std::span<const UnitRow> units()
{
    return rows;
}

Unit unitForCode(std::uint32_t code)
{
    const auto* family = std::ranges::find_if(families, [code](const UnitFamily& f)
                                              { return (code & f.bits) == f.bits; });
    if (family == std::end(families))
        return {};
    const auto* unit = std::ranges::find(rows, code, &UnitRow::code);
    return {unit == std::end(rows) ? "" : unit->name, family->type};
}

const char* lengthUnitName(std::int32_t index)
{
    const bool known = index >= 0 && index < static_cast<std::int32_t>(lengthUnitCount);
    return rows[known ? index : centimeterIndex].name;
}

} // namespace vyr::base
