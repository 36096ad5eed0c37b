#include "assets/Schemas.h"

#include <climits>
#include <string>

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
    for (const char* schema : {"lyrexmetalschema", "LyrexMetalSchema ", "LyrexMetal", "LyrexSchema",
                               "GenericSchema", ""})
        EXPECT_FALSE(IsLyrex(*support::AssetBuilder(schema).build())) << schema;
    EXPECT_FALSE(IsLyrex(*support::AssetBuilder("LyrexMetalSchema").withoutDefinition().build()));
}

TEST(LyrexNames, TellPrefixAndNumber)
{
    const struct
    {
        const char* name;
        bool hasPrefix;
        bool isName;
        int number;
    } cases[] = {
        {"Lyrex-123", true, true, 123},
        {"LYREX-123", true, true, 123},
        {"lyrex-", true, true, 0},
        {"Lyrex-12_a", true, false, 12},
        {"Lyrex-_", true, false, 0},
        {"Lyrex-abc", true, true, 0},
        {"Lyrex-12abc", true, true, 12},
        {"Lyrex- +7", true, true, 7},
        {"Lyrex--5", true, true, -5},
        {"Lyrex-1_2_3", true, false, 1},
        {"Lyrex-99999999999999999999", true, true, INT_MAX},
        {"Lyrex", false, false, 0},
        {"Lyre-1", false, false, 1},
        {" Lyrex-1", false, false, 1},
        {"xLyrex-1", false, false, 1},
        {"42", false, false, 42},
        {"", false, false, 0},
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
