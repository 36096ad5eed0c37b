#include <climits>
#include <set>
#include <sstream>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "assets/InputColorSpace.h"
#include "assets/Schemas.h"
#include "assets/Units.h"
#include "support/AssetBuilder.h"

namespace vyr::MaterialTranslation::assets
{

namespace
{

using support::AssetBuilder;

TEST(Units, OfEveryCodeAndIndex)
{
    // Code, unit and family, "-" for none. First the lengths in the order of their index; last codes of
    // a family that nobody knows: the distance bit comes before the angle's, and half of luminance's
    // bits are not luminance.
    std::istringstream rows(R"(
        2010 nanometer distance   2027 micron distance    200E millimeter distance
        200D centimeter distance  2016 inch distance      2017 foot distance
        201D yard distance        2001 meter distance     2009 kilometer distance
        2021 mile distance        8001 radians angle      8002 degrees angle
        37001 candelapersquaremeter luminance             37002 footlambert luminance
        37003 candelapersquarefoot luminance
        2005 - distance           8003 - angle            37000 - luminance
        FFFFFFFF - luminance      A001 - distance         32001 - distance
        0 - -                     1001 - -                35001 - -)");
    std::vector<std::string> names;
    std::uint32_t code = 0;
    for (std::string unit, family; rows >> std::hex >> code >> unit >> family;)
    {
        EXPECT_EQ(UnitForCode(code), Unit(unit == "-" ? "" : unit, family == "-" ? "" : family))
            << std::hex << code;
        names.push_back(unit);
    }
    ASSERT_EQ(names.size(), 24u);
    for (std::int32_t i = 0; i < 10; ++i)
        EXPECT_EQ(DistanceUnitName(i), names[static_cast<std::size_t>(i)]);
    for (const std::int32_t outside : {-1, 10, INT_MAX, INT_MIN})
        EXPECT_EQ(DistanceUnitName(outside), "centimeter");
}

/// The words of a text such as "a b", or the numbers of one such as "1-3 7".
std::set<std::string> entriesOf(const std::string& text)
{
    std::set<std::string> entries;
    std::istringstream stream(text);
    for (std::string part; stream >> part;)
    {
        if (part.find_first_not_of("0123456789-") == std::string::npos)
            for (int i = std::stoi(part); i <= std::stoi(part.substr(part.find('-') + 1)); ++i)
                entries.insert(std::to_string(i));
        else
            entries.insert(part);
    }
    return entries;
}

/// What presets and property names say of a colour: every number to well past the last class, so
/// every boundary from both sides, and every name of the map.
TEST(ColorMeanings, OfPresetNumbersAndPropertyNames)
{
    const auto display = entriesOf(
        "1-133 137-141 144-180 202 204-208 213-237 240-253 255-256 318-323 334-338 344 350 352-422 "
        "624 1170-1172 2000-2023 surface_albedo opaque_albedo opaque_luminance_modifier metal_f0 "
        "transparent_color layered_bottom_f0 layered_diffuse glazing_transmission_color glazing_f0 "
        "Surface_Albedo");
    const auto linear = entriesOf(
        "134-136 142-143 181-201 203 209-212 238-239 254 257-262 625-626 800-898 1100-1169 "
        "1173-1188 2024-2064 surface_cutout surface_roughness surface_anisotropy surface_rotation "
        "surface_normal opaque_f0 opaque_mfp opaque_mfp_modifier opaque_luminance transparent_ior "
        "transparent_distance layered_f0 layered_fraction layered_roughness layered_anisotropy "
        "layered_rotation layered_normal glazing_transmission_roughness LAYERED_F0");
    const auto expected = [&](const std::string& entry)
    {
        return display.count(entry)  ? ColorMeaning::Display
               : linear.count(entry) ? ColorMeaning::Linear
                                     : ColorMeaning::Unknown;
    };
    for (long long number = -3; number < 3000; ++number)
        EXPECT_EQ(presetMeaning(number), expected(std::to_string(number))) << number;
    for (const long long number : {2147483647LL, -2147483647LL, 4294967295LL, 4294967297LL})
        EXPECT_EQ(presetMeaning(number), ColorMeaning::Unknown) << number;
    for (const auto& entries : {display, linear, entriesOf("albedo surface_albed surface_albedoo")})
        for (const std::string& entry : entries)
            EXPECT_EQ(propertyMeaning(entry),
                      entry[0] > '9' ? expected(entry) : ColorMeaning::Unknown)
                << entry;
}

TEST(Schemas, OfTheLyrexFamilyAreKnownExactly)
{
    for (const char* schema : {"LyrexMetalSchema", "LyrexOpaqueSchema", "LyrexTransparentSchema",
                               "LyrexLayeredSchema", "LyrexGlazingSchema"})
        EXPECT_TRUE(IsLyrex(*AssetBuilder(schema).build())) << schema;
    for (const char* schema : {"lyrexmetalschema", "LyrexMetalSchema ", "LyrexMetal", ""})
        EXPECT_FALSE(IsLyrex(*AssetBuilder(schema).build())) << schema;
    EXPECT_FALSE(IsLyrex(*AssetBuilder("LyrexMetalSchema").withoutDefinition().build()));
}

TEST(LyrexNames, TellPrefixAndNumber)
{
    const std::tuple<const char*, bool, bool, int> cases[] = {
        {"Lyrex-123", true, true, 123}, {"LYREX-12abc", true, true, 12},
        {"lyrex-", true, true, 0},      {"Lyrex-12_a", true, false, 12},
        {"Lyrex- +7", true, true, 7},   {"Lyrex--5", true, true, -5},
        {"Lyrex", false, false, 0},     {"Lyrex-99999999999999999999", true, true, INT_MAX},
        {"Lyre-1", false, false, 1},    {"xLyrex-1", false, false, 1},
        {"42", false, false, 42},       {"", false, false, 0}};
    for (const auto& [name, hasPrefix, isName, number] : cases)
        EXPECT_EQ(std::tuple(HasLyrexPrefix(name), IsLyrexName(name), LyrexNameNumber(name)),
                  std::tuple(hasPrefix, isName, number))
            << name;
}

} // namespace

} // namespace vyr::MaterialTranslation::assets
