#include <string>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

struct NameCase
{
    const char* displayName;
    const char* identifier;
    bool useIdentifier;
    const char* expected;
};

const NameCase nameCases[] = {
    {"Brick Wall 01", "x", false, "BrickWall01"},
    {"Ceramic_Tile-3", "x", false, "CeramicTile3"},
    {"3D Metal", "x", false, "M3DMetal"},
    {"-7-", "x", false, "M7"},
    {"\xC3\x84pfel", "x", false, "pfel"},
    {"\xE6\x9C\xA8", "mat-12.a", false, "XID__mat12a"},
    {"!?", "a_b c", false, "XID__a_bc"},
    {"", "7", false, "XID__7"},
    {"", "", false, "XID__"},
    {"\xE6\x9C\xA8", "\xE6\x9C\xA8", false, "XID__"},
    {"Oak", "mat-12.a", true, "XID_Oak_mat12a"},
    {"3D", "_id_", true, "XID_3D__id_"},
    {"Oak_Wood", "", true, "XID_OakWood_"},
    {"Line\nbreak\ttab", "x", false, "Linebreaktab"},
    {"\xFF\xFE\x80 broken UTF-8", "x", false, "brokenUTF8"},
};

using MaterialNames = HostTest;

TEST_F(MaterialNames, AreReducedToIdentifiers)
{
    for (const NameCase& one : nameCases)
    {
        ConverterOptions options;
        options.useAssetIdInName = one.useIdentifier;
        MaterialXConverter converter(options);
        const AssetPtr asset = AssetBuilder().name(one.displayName).id(one.identifier).build();
        EXPECT_EQ(converter.getMaterialName(*asset).str(), one.expected);
    }
}

/// A recursive pattern matcher runs out of stack on texts of this length.
TEST_F(MaterialNames, MayBeVeryLong)
{
    std::string name;
    std::string expected;
    for (int i = 0; i < 200000; ++i)
    {
        name += "a ";
        expected += "a";
    }
    ConverterOptions options;
    MaterialXConverter converter(options);
    EXPECT_TRUE(converter.getMaterialName(*AssetBuilder().name(name).build()).str() == expected);
}

} // namespace

} // namespace vyr::hosttests
