#include "assets/Units.h"

#include <gtest/gtest.h>

#include "support/AssetBuilder.h"

namespace vyr::MaterialTranslation::assets
{

namespace
{

using support::AssetBuilder;
using support::AssetPtr;

struct CodedUnit
{
    std::uint32_t code;
    const char* unit;
    const char* type;
};

constexpr CodedUnit units[] = {
    {0x2010, "nanometer", "distance"},
    {0x2027, "micron", "distance"},
    {0x200E, "millimeter", "distance"},
    {0x200D, "centimeter", "distance"},
    {0x2016, "inch", "distance"},
    {0x2017, "foot", "distance"},
    {0x201D, "yard", "distance"},
    {0x2001, "meter", "distance"},
    {0x2009, "kilometer", "distance"},
    {0x2021, "mile", "distance"},
    {0x8001, "radians", "angle"},
    {0x8002, "degrees", "angle"},
    {0x37001, "candelapersquaremeter", "luminance"},
    {0x37002, "footlambert", "luminance"},
    {0x37003, "candelapersquarefoot", "luminance"},
    // Codes of a family that nobody knows.
    {0x2005, "", "distance"},
    {0x8003, "", "angle"},
    {0x37000, "", "luminance"},
    {0x37004, "", "luminance"},
    {0xFFFFFFFF, "", "luminance"},
    // The distance bit comes before the angle's; half of luminance's bits are not luminance.
    {0xA001, "", "distance"},
    {0x32001, "", "distance"},
    {0x12016, "", "distance"},
    // No family.
    {0, "", ""},
    {0x1001, "", ""},
    {0x35001, "", ""},
};

TEST(Units, OfEveryCodeAndIndex)
{
    for (const auto& [code, unit, type] : units)
        EXPECT_EQ(UnitForCode(code), Unit(unit, type)) << std::hex << code;
    // The table starts with the lengths in the order of their index.
    for (std::int32_t i = 0; i < 10; ++i)
        EXPECT_EQ(DistanceUnitName(i), units[i].unit);
    for (const std::int32_t outside : {-1, 10, 2147483647, -2147483647 - 1})
        EXPECT_EQ(DistanceUnitName(outside), "centimeter");
}

TEST(DeclaredColorSpace, ComesFromTheCompanionOfAColour)
{
    const support::ValuePtr second =
        support::choiceValue({"not this", "colorspace_linear"}, {1, 0});
    AssetBuilder builder;
    for (const char* name : {"declared", "none selected", "alone", "unconnected", "lying"})
        builder.color(name, 1, 1, 1);
    builder.property("declared_colorspace", 10, second).scalar("number", 1);
    builder.property("none selected_colorspace", 10, support::choiceValue({"x"}, {}));
    builder.property("number_colorspace", 10, second).property("missing_colorspace", 10, second);
    builder.property("unconnected_colorspace", 9, nullptr).string("lying_colorspace", "x");
    const AssetPtr asset = builder.build();
    const AssetView view(*asset);
    EXPECT_EQ(GetPropertyColorSpace(view, "declared"), "colorspace_linear");
    for (const char* name : {"none selected", "alone", "number", "unconnected", "missing"})
        EXPECT_EQ(GetPropertyColorSpace(view, name), "colorspace_not_specified") << name;
    EXPECT_THROW(GetPropertyColorSpace(view, "lying"), std::invalid_argument);
}

} // namespace

} // namespace vyr::MaterialTranslation::assets
