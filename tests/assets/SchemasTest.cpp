#include "assets/Schemas.h"

#include <climits>
#include <tuple>

#include <gtest/gtest.h>

#include "support/AssetBuilder.h"

namespace vyr::MaterialTranslation::assets
{

namespace
{

TEST(Schemas, OfTheLyrexFamilyAreKnownExactly)
{
    for (const char* schema : {"LyrexMetalSchema", "LyrexOpaqueSchema", "LyrexTransparentSchema",
                               "LyrexLayeredSchema", "LyrexGlazingSchema"})
        EXPECT_TRUE(IsLyrex(*support::AssetBuilder(schema).build())) << schema;
    for (const char* schema : {"lyrexmetalschema", "LyrexMetalSchema ", "LyrexMetal", ""})
        EXPECT_FALSE(IsLyrex(*support::AssetBuilder(schema).build())) << schema;
    EXPECT_FALSE(IsLyrex(*support::AssetBuilder("LyrexMetalSchema").withoutDefinition().build()));
}

TEST(LyrexNames, TellPrefixAndNumber)
{
    const std::tuple<const char*, bool, bool, int> cases[] = {
        {"Lyrex-123", true, true, 123}, {"LYREX-12abc", true, true, 12},
        {"lyrex-", true, true, 0},      {"Lyrex-12_a", true, false, 12},
        {"Lyrex-_", true, false, 0},    {"Lyrex-abc", true, true, 0},
        {"Lyrex- +7", true, true, 7},   {"Lyrex--5", true, true, -5},
        {"Lyrex", false, false, 0},     {"Lyrex-99999999999999999999", true, true, INT_MAX},
        {"Lyre-1", false, false, 1},    {"xLyrex-1", false, false, 1},
        {"42", false, false, 42},       {"", false, false, 0},
    };
    for (const auto& [name, hasPrefix, isName, number] : cases)
    {
        EXPECT_EQ(HasLyrexPrefix(name), hasPrefix) << name;
        EXPECT_EQ(IsLyrexName(name), isName) << name;
        EXPECT_EQ(LyrexNameNumber(name), number) << name;
    }
}

} // namespace

} // namespace vyr::MaterialTranslation::assets
