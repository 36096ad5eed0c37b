#include "assets/Units.h"

#include <string>

#include <gtest/gtest.h>

#include "support/AssetBuilder.h"

namespace vyr::MaterialTranslation::assets
{

namespace
{

using support::AssetBuilder;
using support::AssetPtr;

TEST(Units, OfEveryCode)
{
    const struct
    {
        std::uint32_t code;
        const char* unit;
        const char* type;
    } cases[] = {
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
        {0x2000, "", "distance"},
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
        {0x1002, "", ""},
        {0x35001, "", ""},
        {0x0001, "", ""},
    };
    for (const auto& [code, unit, type] : cases)
        EXPECT_EQ(UnitForCode(code), Unit(unit, type)) << std::hex << code;
}

TEST(Units, OfLengthByIndex)
{
    const char* names[] = {"nanometer", "micron", "millimeter", "centimeter", "inch",
                           "foot",      "yard",   "meter",      "kilometer",  "mile"};
    for (std::int32_t i = 0; i < 10; ++i)
        EXPECT_EQ(DistanceUnitName(i), names[i]);
    for (const std::int32_t outside : {-1, 10, 11, 2147483647, -2147483647 - 1})
        EXPECT_EQ(DistanceUnitName(outside), "centimeter");
}

TEST(DeclaredColorSpace, ComesFromTheCompanionOfAColour)
{
    const struct
    {
        const char* property;
        const char* expected;
    } cases[] = {
        {"declared", "colorspace_linear"},
        {"several", "colorspace_sRGB_gamma24"},
        {"none selected", "colorspace_not_specified"},
        {"alone", "colorspace_not_specified"},
        {"number", "colorspace_not_specified"},
        {"unconnected", "colorspace_not_specified"},
        {"missing", "colorspace_not_specified"},
    };
    const AssetPtr asset =
        AssetBuilder()
            .color("declared", 1, 1, 1)
            .choice("declared_colorspace", "colorspace_linear")
            .color("several", 1, 1, 1)
            .property(
                "several_colorspace", 10,
                support::choiceValue({"colorspace_linear", "colorspace_sRGB_gamma24"}, {1, 0}))
            .color("none selected", 1, 1, 1)
            .property("none selected_colorspace", 10,
                      support::choiceValue({"colorspace_linear"}, {}))
            .color("alone", 1, 1, 1)
            .scalar("number", 1)
            .choice("number_colorspace", "colorspace_linear")
            .color("unconnected", 1, 1, 1)
            .property("unconnected_colorspace", 9, nullptr)
            .choice("missing_colorspace", "colorspace_linear")
            .build();
    for (const auto& [property, expected] : cases)
        EXPECT_EQ(GetPropertyColorSpace(AssetView(*asset), property), expected) << property;

    // A companion that is no choice list is an error, as everywhere.
    const AssetPtr lying = AssetBuilder().color("c", 1, 1, 1).string("c_colorspace", "x").build();
    EXPECT_THROW(GetPropertyColorSpace(AssetView(*lying), "c"), std::invalid_argument);
}

} // namespace

} // namespace vyr::MaterialTranslation::assets
