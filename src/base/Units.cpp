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
    {eUnit_Nanometer, distanceUnitType, "nanometer", 1e-9},
    {eUnit_Micron, distanceUnitType, "micron", 1e-6},
    {eUnit_Millimeter, distanceUnitType, "millimeter", 1e-3},
    {eUnit_Centimeter, distanceUnitType, "centimeter", 1e-2},
    {eUnit_Inch, distanceUnitType, "inch", 0.0254},
    {eUnit_Foot, distanceUnitType, "foot", 0.3048},
    {eUnit_Yard, distanceUnitType, "yard", 0.9144},
    {eUnit_Meter, distanceUnitType, "meter", 1.0},
    {eUnit_Kilometer, distanceUnitType, "kilometer", 1e3},
    {eUnit_Mile, distanceUnitType, "mile", 1609.344},
    {eUnit_Radian, angleUnitType, "radians", 57.295779513082320877},
    {eUnit_Degree, angleUnitType, "degrees", 1.0},
    {eUnit_CandelaPerSquareMeter, luminanceUnitType, "candelapersquaremeter", 1.0},
    {eUnit_FootLambert, luminanceUnitType, "footlambert", 3.4262590996353905},
    {eUnit_CandelaPerSquareFoot, luminanceUnitType, "candelapersquarefoot", 10.763910416709722},
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

double unitSize(std::uint32_t code, std::string_view type)
{
    const auto* unit = std::ranges::find(rows, code, &UnitRow::code);
    return unit != std::end(rows) && unit->type == type ? unit->size : 1.0;
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
