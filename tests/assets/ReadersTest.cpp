#include "assets/PropertyReaders.h"

#include <limits>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "support/AssetBuilder.h"
#include "support/Host.h"

namespace vyr::MaterialTranslation::assets
{

namespace
{

using namespace vyr::support;

constexpr const char* invalid = "Invalid property specified";

/// What an operation throws as std::invalid_argument; "nothing" when it throws nothing.
template <class Operation> std::string thrownBy(const Operation& operation)
{
    try
    {
        operation();
    }
    catch (const std::invalid_argument& error)
    {
        return error.what();
    }
    return "nothing";
}

/// One property of every type, by the type's name.
AssetPtr assetOfAllTypes()
{
    AssetBuilder builder;
    builder.string("string", "s").uri("uri", "u").boolean("boolean", true).integer("integer", 7);
    builder.scalars("scalar", {1.5, 2.5, 3.5}, 0x2016).color("color", 0.25, 0.5, 0.75, 0.125);
    builder.connect("reference", bitmapAsset("x.png")).choice("choice", "picked");
    builder.text("text", "t").property("list", 12, nullptr);
    return builder.build();
}

class Readers : public ::testing::Test
{
  protected:
    Readers() { resetHost(); }
    void TearDown() override
    {
        EXPECT_EQ(liveAssets(), 0u);
        for (const std::string& breach : contractBreaches())
            ADD_FAILURE() << breach;
    }
};

TEST_F(Readers, ThrowTheirFixedTextForMissingAndMistypedProperties)
{
    using V = const AssetView&;
    using N = const char*;
    const std::tuple<void (*)(V, N), std::string, std::string> readers[] = {
        {[](V v, N n) { GetBooleanProperty(v, n); }, "boolean", "ePropertyType_Boolean"},
        {[](V v, N n) { GetIntegerProperty(v, n); }, "integer", "ePropertyType_Integer"},
        {[](V v, N n) { GetFloatProperty(v, n); }, "scalar", "ePropertyType_Scalar"},
        {[](V v, N n) { GetFloatWithUnitProperty(v, n); }, "scalar", "ePropertyType_Scalar"},
        {[](V v, N n) { GetVector2Property(v, n); }, "scalar", "ePropertyType_Scalar"},
        {[](V v, N n) { GetVector3Property(v, n); }, "scalar", "ePropertyType_Scalar"},
        {[](V v, N n) { GetColor3Property(v, n); }, "color", "ePropertyType_Color"},
        {[](V v, N n) { GetColor4Property(v, n); }, "color", "ePropertyType_Color"},
        {[](V v, N n) { GetStringProperty(v, n); }, "string", "ePropertyType_String"},
        {[](V v, N n) { GetTextProperty(v, n); }, "text", invalid},
        {[](V v, N n) { GetChoiceListProperty(v, n); }, "choice", invalid},
        {[](V v, N n) { GetUriProperty(v, n); }, "uri", "ePropertyType_URI"},
        {[](V v, N n) { GetUriPathProperty(v, n); }, "uri", "ePropertyType_URI"},
    };
    const AssetPtr asset = assetOfAllTypes();
    const AssetView view(*asset);
    for (const auto& [read, type, message] : readers)
        for (const char* name : {"string", "uri", "boolean", "integer", "scalar", "color",
                                 "reference", "choice", "text", "list", "missing"})
            EXPECT_EQ(thrownBy([&] { read(view, name); }), name == type ? "nothing" : message)
                << "a " << type << " read from " << name;
}

TEST_F(Readers, DeliverTheValues)
{
    const AssetPtr asset = assetOfAllTypes();
    const AssetView view(*asset);
    EXPECT_TRUE(GetBooleanProperty(view, "boolean"));
    EXPECT_EQ(GetIntegerProperty(view, "integer"), 7);
    EXPECT_EQ(GetFloatProperty(view, "scalar"), 1.5f);
    EXPECT_EQ(GetFloatWithUnitProperty(view, "scalar"), std::make_pair(0x2016u, 1.5f));
    EXPECT_EQ(GetVector2Property(view, "scalar"), (Vector2{1.5f, 2.5f}));
    EXPECT_EQ(GetVector3Property(view, "scalar"), (Vector3{1.5f, 2.5f, 3.5f}));
    EXPECT_EQ(GetColor3Property(view, "color"), (Color3{0.25f, 0.5f, 0.75f}));
    EXPECT_EQ(GetColor4Property(view, "color"), (Color4{0.25f, 0.5f, 0.75f, 0.125f}));
    EXPECT_EQ(GetStringProperty(view, "string"), "s");
    EXPECT_EQ(GetTextProperty(view, "text"), "t");
    EXPECT_EQ(GetChoiceListProperty(view, "choice"), std::vector<std::string>{"picked"});
    EXPECT_EQ(GetConnectedTextureName(view, "reference"), "UnifiedBitmapSchema");
}

TEST_F(Readers, KeepToTheirStrictAndSoftEdges)
{
    AssetBuilder builder;
    builder.scalars("pair", {1, 2}).scalars("three", {1, 2, 3}).scalars("none", {});
    builder.scalar("unitless", 1, 0x1001).scalar("unitless too", 1, 0x1002).scalar("metric", 1, 1);
    builder.scalar("nan", std::numeric_limits<double>::quiet_NaN()).scalar("huge", 1e300);
    builder.property("liar", 7, textValue("no number")).property("empty", 7, nullptr);
    builder.property("choices", 10, choiceValue({"a", "b", "c"}, {2, 0, 2}));
    builder.property("nothing chosen", 10, choiceValue({"a"}, {}));
    builder.property("outside", 10, choiceValue({"a"}, {1}));
    builder.property("tableless", 10, choiceValueWithoutTable({0}));
    builder.property("reference", 9, nullptr).integer("zero", 0);
    const AssetPtr asset = builder.build();
    const AssetView view(*asset);
    EXPECT_EQ(thrownBy([&] { GetVector2Property(view, "pair"); }), "ePropertyType_Scalar");
    EXPECT_EQ(GetVector2Property(view, "three"), (Vector2{1, 2}));
    for (const char* name : {"none", "nan", "huge", "liar", "empty"})
        EXPECT_EQ(thrownBy([&] { GetFloatProperty(view, name); }), "ePropertyType_Scalar") << name;
    EXPECT_EQ(GetChoiceListProperty(view, "choices"), (std::vector<std::string>{"c", "a", "c"}));
    EXPECT_TRUE(GetChoiceListProperty(view, "nothing chosen").empty());
    for (const char* name : {"outside", "tableless"})
        EXPECT_EQ(thrownBy([&] { GetChoiceListProperty(view, name); }), invalid) << name;
    for (const char* name : {"pair", "unitless", "unitless too"})
        EXPECT_FALSE(HasPropertyUnit(view, name)) << name;
    EXPECT_TRUE(HasPropertyUnit(view, "metric"));
    for (const auto& [name, active] :
         {std::pair("zero", true), {"reference", false}, {"missing", false}, {"empty", true}})
        EXPECT_EQ(IsPropertyActive(view, name), active) << name;
    EXPECT_FALSE(HasPropertyValue(view, "empty"));
    for (const char* name : {"reference", "missing"})
        EXPECT_EQ(GetConnectedTextureName(view, name), "No connected texture!");
}

TEST_F(Readers, ResolveReferencesAsFarAsTheyCan)
{
    setResolver(
        [](const std::string& uri, std::string& path)
        {
            path = "/found/" + uri;
            return uri == "tex.png" || uri == "preferred.png";
        });
    const auto read = [](auto reader, const char* stored, const char* preferred = "")
    {
        const AssetPtr asset = AssetBuilder().uri("u", stored, preferred).build();
        return reader(AssetView(*asset), "u");
    };
    for (const auto& [stored, expected] : {std::pair("tex.png", "/found/tex.png"),
                                           {"tex.png.", "/found/tex.png"},
                                           {"tex.png..", "tex.png.."},
                                           {"other.png.", "other.png."},
                                           {".", "."},
                                           {"", ""}})
        EXPECT_EQ(read(GetUriProperty, stored), expected) << stored;
    EXPECT_EQ(read(GetResolvedWidePath, "tex.png", "preferred.png"), L"/found/preferred.png");
    EXPECT_EQ(read(GetResolvedWidePath, "tex.png", "unknown.png"), L"/found/tex.png");
    EXPECT_EQ(read(GetResolvedWidePath, "other.png", "unknown.png"), L"unknown.png");
    EXPECT_EQ(read(GetResolvedWidePath, "other.png"), L"other.png");
    for (const LibraryPresence presence : {LibraryPresence::NoResolver, LibraryPresence::NoManager})
    {
        setLibraryPresence(presence);
        EXPECT_EQ(read(GetUriProperty, "tex.png"), "tex.png");
    }
}

} // namespace

} // namespace vyr::MaterialTranslation::assets
