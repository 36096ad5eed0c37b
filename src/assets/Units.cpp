#include "assets/Units.h"

#include <algorithm>
#include <iterator>

#include <kelvor/platform/assets/IProperty.h>
#include <kelvor/platform/assets/PropertyType.h>
#include <kelvor/platform/assets/UnitCode.h>

#include "assets/PropertyReaders.h"

namespace vyr::MaterialTranslation::assets
{

namespace platform = kelvor::platform::assets;

namespace
{

struct UnitFamily
{
    std::uint32_t bits;
    const char* unitType;
};

// A code belongs to the first family whose bits it has. Luminance codes have the distance bit too,
// so luminance comes first.
constexpr UnitFamily unitFamilies[] = {
    {0x37000, "luminance"},
    {0x2000, distanceUnitType},
    {0x8000, angleUnitType},
};

struct UnitRow
{
    std::uint32_t code;
    const char* unitType;
    const char* name;
};

// The distances stand in the order of their index.
constexpr UnitRow units[] = {
    {platform::eUnit_Nanometer, distanceUnitType, "nanometer"},
    {platform::eUnit_Micron, distanceUnitType, "micron"},
    {platform::eUnit_Millimeter, distanceUnitType, "millimeter"},
    {platform::eUnit_Centimeter, distanceUnitType, "centimeter"},
    {platform::eUnit_Inch, distanceUnitType, "inch"},
    {platform::eUnit_Foot, distanceUnitType, "foot"},
    {platform::eUnit_Yard, distanceUnitType, "yard"},
    {platform::eUnit_Meter, distanceUnitType, "meter"},
    {platform::eUnit_Kilometer, distanceUnitType, "kilometer"},
    {platform::eUnit_Mile, distanceUnitType, "mile"},
    {platform::eUnit_Radian, angleUnitType, "radians"},
    {platform::eUnit_Degree, angleUnitType, "degrees"},
    {platform::eUnit_CandelaPerSquareMeter, "luminance", "candelapersquaremeter"},
    {platform::eUnit_FootLambert, "luminance", "footlambert"},
    {platform::eUnit_CandelaPerSquareFoot, "luminance", "candelapersquarefoot"},
};
constexpr std::int32_t distanceCount = 10;
constexpr std::int32_t centimeterIndex = 3;

} // namespace

Unit UnitForCode(std::uint32_t code)
{
    const auto* family = std::ranges::find_if(unitFamilies, [code](const UnitFamily& f)
                                              { return (code & f.bits) == f.bits; });
    if (family == std::end(unitFamilies))
        return {};
    const auto* unit =
        std::ranges::find_if(units, [&](const UnitRow& row) { return row.code == code; });
    return {unit == std::end(units) ? "" : unit->name, family->unitType};
}

std::string DistanceUnitName(std::int32_t index)
{
    return units[index >= 0 && index < distanceCount ? index : centimeterIndex].name;
}

Unit readUnit(const AssetView& view, const char* name, const std::string& unitType, const Log& log)
{
    if (!HasPropertyUnit(view, name))
        return {};
    Unit unit = UnitForCode(GetPropertyUnit(view, name));
    if (!unit.second.empty() && unit.second != unitType)
        log.warning(DiagnosticCode::UnitMisfit, name,
                    "a unit of the kind \"" + unit.second +
                        "\" does not fit here; renderers will refuse it");
    else if (unit.first.empty())
        log.warning(DiagnosticCode::UnitUnknown, name,
                    "the unit of the value is not known; the document does not state it");
    return unit;
}

float readUnitless(const AssetView& view, const char* name, float fallback, const Log& log,
                   std::uint32_t expected)
{
    if (!HasPropertyValue(view, name))
        return fallback;
    const float value = GetFloatProperty(view, name);
    if (HasPropertyUnit(view, name) && GetPropertyUnit(view, name) != expected)
        log.warning(DiagnosticCode::UnitIgnored, name,
                    "the document states no unit here; the number is taken as it stands");
    return value;
}

std::string GetPropertyColorSpace(const AssetView& view, const char* name)
{
    constexpr const char* notSpecified = "colorspace_not_specified";
    const IProperty* property = FindProperty(view, name);
    if (!property || property->GetType() != platform::ePropertyType_Color)
        return notSpecified;
    const std::string companion = GetPropertyIdentifier(view, name) + colorSpaceSuffix;
    if (!IsPropertyActive(view, companion.c_str()))
        return notSpecified;
    const auto choices = GetChoiceListProperty(view, companion.c_str());
    return choices.empty() ? notSpecified : choices.front();
}

bool declaresGamma24(const std::string& declared)
{
    return declared.find("colorspace_sRGB_gamma24") != std::string::npos;
}

bool declaresLinear(const std::string& declared)
{
    return declared.find("colorspace_linear") != std::string::npos;
}

} // namespace vyr::MaterialTranslation::assets
