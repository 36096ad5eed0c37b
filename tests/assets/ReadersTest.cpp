#include "assets/PropertyReaders.h"

#include <limits>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "support/AssetBuilder.h"

namespace vyr::MaterialTranslation::assets
{

namespace
{

using namespace vyr::support;

constexpr const char* invalid = "Invalid property specified";

/// What a reader delivers, or the text of what it throws.
template <auto Read> std::string printed(const AssetView& view, const char* name)
{
    try
    {
        return ::testing::PrintToString(Read(view, name));
    }
    catch (const std::invalid_argument& error)
    {
        return error.what();
    }
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

/// Each from the property of its type, and its fixed text from all others.
TEST_F(Readers, DeliverValuesOfTheirTypeAlone)
{
    constexpr const char* scalar = "ePropertyType_Scalar";
    constexpr const char* color = "ePropertyType_Color";
    using Reader = std::string(const AssetView&, const char*);
    const std::tuple<Reader*, std::string, std::string, std::string> readers[] = {
        {printed<GetBooleanProperty>, "boolean", "true", "ePropertyType_Boolean"},
        {printed<GetIntegerProperty>, "integer", "7", "ePropertyType_Integer"},
        {printed<GetFloatProperty>, "scalar", "1.5", scalar},
        {printed<GetFloatWithUnitProperty>, "scalar", "(8214, 1.5)", scalar},
        {printed<GetVector2Property>, "scalar", "{ 1.5, 2.5 }", scalar},
        {printed<GetVector3Property>, "scalar", "{ 1.5, 2.5, 3.5 }", scalar},
        {printed<GetColor3Property>, "color", "{ 0.25, 0.5, 0.75 }", color},
        {printed<GetColor4Property>, "color", "{ 0.25, 0.5, 0.75, 0.125 }", color},
        {printed<GetStringProperty>, "string", "\"s\"", "ePropertyType_String"},
        {printed<GetTextProperty>, "text", "\"t\"", invalid},
        {printed<GetChoiceListProperty>, "choice", "{ \"picked\" }", invalid},
        {printed<GetUriProperty>, "uri", "\"u\"", "ePropertyType_URI"},
        {printed<GetUriPathProperty>, "uri", "\"u\"", "ePropertyType_URI"},
    };
    AssetBuilder builder;
    builder.string("string", "s").uri("uri", "u").boolean("boolean", true).integer("integer", 7);
    builder.scalars("scalar", {1.5, 2.5, 3.5}, 0x2016).color("color", 0.25, 0.5, 0.75, 0.125);
    builder.connect("reference", bitmapAsset("x.png")).choice("choice", "picked");
    builder.text("text", "t").property("list", 12, nullptr);
    const AssetPtr asset = builder.build();
    const AssetView view(*asset);
    for (const auto& [read, type, value, refusal] : readers)
        for (const char* name : {"string", "uri", "boolean", "integer", "scalar", "color",
                                 "reference", "choice", "text", "list", "missing"})
            EXPECT_EQ(read(view, name), name == type ? value : refusal)
                << "a " << type << " read from " << name;
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
    builder.property("tableless", 10, choiceValue({}, {0}));
    builder.property("reference", 9, nullptr).integer("zero", 0);
    const AssetPtr asset = builder.build();
    const AssetView view(*asset);
    EXPECT_EQ(printed<GetVector2Property>(view, "pair"), "ePropertyType_Scalar");
    EXPECT_EQ(GetVector2Property(view, "three"), (Vector2{1, 2}));
    for (const char* name : {"none", "nan", "huge", "liar", "empty"})
        EXPECT_EQ(printed<GetFloatProperty>(view, name), "ePropertyType_Scalar") << name;
    EXPECT_EQ(GetChoiceListProperty(view, "choices"), (std::vector<std::string>{"c", "a", "c"}));
    EXPECT_TRUE(GetChoiceListProperty(view, "nothing chosen").empty());
    for (const char* name : {"outside", "tableless"})
        EXPECT_EQ(printed<GetChoiceListProperty>(view, name), invalid) << name;
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
    hostSettings().resolve = [](const std::string& uri, std::string& path)
    {
        path = "/found/" + uri;
        return uri == "tex.png" || uri == "preferred.png";
    };
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
    for (bool HostSettings::* part : {&HostSettings::hasResolver, &HostSettings::hasManager})
    {
        hostSettings().*part = false;
        EXPECT_EQ(read(GetUriProperty, "tex.png"), "tex.png");
    }
}

} // namespace

} // namespace vyr::MaterialTranslation::assets
