#pragma once

#include <cstdint>

namespace kelvor::platform::assets
{

/// The unit of a value, as IValue::GetUnit reports it. A host may use further codes; the converter
/// then knows at most the family (distance, angle, luminance) and says so.
enum UnitCode : std::uint32_t
{
    eUnit_None = 0,
    /// Two further codes that count as "no physical unit".
    eUnit_NoneA = 0x1001,
    eUnit_NoneB = 0x1002,

    eUnit_Meter = 0x2001,
    eUnit_Kilometer = 0x2009,
    eUnit_Centimeter = 0x200D,
    eUnit_Millimeter = 0x200E,
    eUnit_Nanometer = 0x2010,
    eUnit_Inch = 0x2016,
    eUnit_Foot = 0x2017,
    eUnit_Yard = 0x201D,
    eUnit_Mile = 0x2021,
    eUnit_Micron = 0x2027,

    eUnit_Radian = 0x8001,
    eUnit_Degree = 0x8002,

    eUnit_CandelaPerSquareMeter = 0x37001,
    eUnit_FootLambert = 0x37002,
    eUnit_CandelaPerSquareFoot = 0x37003,
};

} // namespace kelvor::platform::assets
