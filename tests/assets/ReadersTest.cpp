#include "assets/PropertyReaders.h"

#include <functional>
#include <limits>
#include <stdexcept>
#include <string>
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
    const struct
    {
        std::function<void(const AssetView&, const char*)> read;
        const char* type;
        const char* message;
    } readers[] = {
        {[](const AssetView& v, const char* n) { GetBooleanProperty(v, n); }, "boolean",
         "ePropertyType_Boolean"},
        {[](const AssetView& v, const char* n) { GetIntegerProperty(v, n); }, "integer",
         "ePropertyType_Integer"},
        {[](const AssetView& v, const char* n) { GetFloatProperty(v, n); }, "scalar",
         "ePropertyType_Scalar"},
        {[](const AssetView& v, const char* n) { GetFloatWithUnitProperty(v, n); }, "scalar",
         "ePropertyType_Scalar"},
        {[](const AssetView& v, const char* n) { GetVector2Property(v, n); }, "scalar",
         "ePropertyType_Scalar"},
        {[](const AssetView& v, const char* n) { GetVector3Property(v, n); }, "scalar",
         "ePropertyType_Scalar"},
        {[](const AssetView& v, const char* n) { GetColor3Property(v, n); }, "color",
         "ePropertyType_Color"},
        {[](const AssetView& v, const char* n) { GetColor4Property(v, n); }, "color",
         "ePropertyType_Color"},
        {[](const AssetView& v, const char* n) { GetStringProperty(v, n); }, "string",
         "ePropertyType_String"},
        {[](const AssetView& v, const char* n) { GetTextProperty(v, n); }, "text", invalid},
        {[](const AssetView& v, const char* n) { GetChoiceListProperty(v, n); }, "choice", invalid},
        {[](const AssetView& v, const char* n) { GetUriProperty(v, n); }, "uri",
         "ePropertyType_URI"},
        {[](const AssetView& v, const char* n) { GetUriPathProperty(v, n); }, "uri",
         "ePropertyType_URI"},
    };
    const AssetPtr asset = assetOfAllTypes();
    const AssetView view(*asset);
    for (const auto& [read, type, message] : readers)
        for (const char* name : {"string", "uri", "boolean", "integer", "scalar", "color",
                                 "reference", "choice", "text", "list", "missing"})
            EXPECT_EQ(thrownBy([&] { read(view, name); }),
                      std::string(name) == type ? "nothing" : message)
                << "a " << type << " read from " << name;
    for (const auto read : {+[](const AssetView& v) { GetPropertyIdentifier(v, "missing"); },
                            +[](const AssetView& v) { GetPropertyUnit(v, "missing"); },
                            +[](const AssetView& v) { HasPropertyUnit(v, "missing"); }})
        EXPECT_EQ(thrownBy([&] { read(view); }), invalid);
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
    EXPECT_EQ(GetPropertyIdentifier(view, "color"), "color");
    EXPECT_EQ(GetUriWideProperty(view, "uri"), L"u");
    EXPECT_EQ(GetConnectedTextureName(view, "reference"), "UnifiedBitmapSchema");
    EXPECT_EQ(ColorFromBytes(255, 128, 0), (Color3{1.0f, 128.0f / 255.0f, 0.0f}));
    for (const auto& [text, suffix] : {std::pair("opaque_albedo", "albedo"),
                                       {"albedo", "albedo"},
                                       {"a_b_c", "b_c"},
                                       {"_", ""},
                                       {"", ""}})
        EXPECT_EQ(SuffixAfterFirstUnderscore(text), suffix);
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
    for (const auto& [name, has] :
         {std::pair("pair", false), {"unitless", false}, {"unitless too", false}, {"metric", true}})
        EXPECT_EQ(HasPropertyUnit(view, name), has) << name;
    for (const auto& [name, active] :
         {std::pair("zero", true), {"reference", false}, {"missing", false}, {"empty", true}})
        EXPECT_EQ(IsPropertyActive(view, name), active) << name;
    EXPECT_FALSE(HasPropertyValue(view, "empty"));
    EXPECT_EQ(GetConnectedTextureName(view, "reference"), "No connected texture!");
    EXPECT_EQ(GetConnectedTextureName(view, "missing"), "No connected texture!");
    EXPECT_FALSE(GetConnectedAsset(view, "missing").first);
    EXPECT_EQ(GetUriWideProperty(view, "zero"), L"");
    EXPECT_EQ(GetResolvedWidePath(view, "missing"), L"");
}

TEST_F(Readers, ResolveReferencesAsFarAsTheyCan)
{
    setResolver(
        [](const std::string& uri, std::string& path)
        {
            path = "/found/" + uri;
            return uri == "tex.png" || uri == "preferred.png";
        });
    const auto asset = [](const char* stored, const char* preferred = "")
    { return AssetBuilder().uri("u", stored, preferred).build(); };
    const struct
    {
        const char* stored;
        const char* expected;
    } cases[] = {
        {"tex.png", "/found/tex.png"},
        {"tex.png.", "/found/tex.png"},
        {"tex.png..", "tex.png.."},
        {"other.png", "other.png"},
        {"other.png.", "other.png."},
        {".", "."},
        {"", ""},
    };
    for (const auto& [stored, expected] : cases)
    {
        const AssetPtr one = asset(stored);
        EXPECT_EQ(GetUriProperty(AssetView(*one), "u"), expected) << stored;
    }
    const struct
    {
        const char* stored;
        const char* preferred;
        const wchar_t* expected;
    } wide[] = {
        {"tex.png", "preferred.png", L"/found/preferred.png"},
        {"tex.png", "unknown.png", L"/found/tex.png"},
        {"other.png", "unknown.png", L"unknown.png"},
        {"other.png", "", L"other.png"},
    };
    for (const auto& [stored, preferred, expected] : wide)
    {
        const AssetPtr one = asset(stored, preferred);
        EXPECT_EQ(GetResolvedWidePath(AssetView(*one), "u"), expected) << stored << preferred;
    }
    for (const LibraryPresence presence : {LibraryPresence::NoResolver, LibraryPresence::NoManager})
    {
        setLibraryPresence(presence);
        const AssetPtr one = asset("tex.png");
        EXPECT_EQ(GetUriProperty(AssetView(*one), "u"), "tex.png");
    }
}

} // namespace

} // namespace vyr::MaterialTranslation::assets
