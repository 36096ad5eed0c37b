#include <gtest/gtest.h>

#include "AssetFiles.h"

namespace vyr::assetlib::tests
{

namespace
{

/// The ids, or for inline assets the schemas in brackets, of what a property is connected to.
std::vector<std::string> connected(const platform::IProperty* property)
{
    std::vector<std::string> ids;
    for (std::size_t i = 0; property && i < property->GetConnectionCount(); ++i)
    {
        platform::IAssetInstance* asset = property->GetConnectedAsset(i);
        const std::string id = text(*asset, &platform::IAssetInstance::GetIdentifier);
        ids.push_back(
            id.empty()
                ? "(" + text(*asset->GetDefinition(), &platform::IAssetDefinition::GetName) + ")"
                : id);
        asset->Release();
    }
    return ids;
}

std::string asset(const std::string& id, const std::string& connected = {})
{
    const std::string property =
        connected.empty() ? "" : R"("c": {"type": "reference", "connected": )" + connected + "}";
    return R"({"id": ")" + id + R"(", "schema": "S", "properties": {)" + property + "}}";
}

std::string file(const std::string& materials, const std::string& textures = {})
{
    return R"({"assetLibrary": 1, "materials": [)" + materials + R"(], "textures": [)" + textures +
           "]}";
}

TEST(AssetConnections, CrossFilesAndKeepTheirOrder)
{
    AssetFiles files;
    files.add("a.json", file(asset("m", R"(["late", {"schema": "Inline", "properties": {
                            "c": {"type": "uri", "connected": ["late"]}}}, "t", "late"])")));
    files.add("b.json", file(asset("late"), asset("t", "\"late\"")));
    const Library library = files.library();

    const platform::IProperty* property = find(*library.findMaterial("m")->asset, "c");
    EXPECT_TRUE(property->HasConnections());
    EXPECT_EQ(connected(property), (std::vector<std::string>{"late", "(Inline)", "t", "late"}));
    platform::IAssetInstance* inlined = property->GetConnectedAsset(1);
    EXPECT_EQ(connected(find(*inlined, "c")), std::vector<std::string>{"late"});
    inlined->Release();
    EXPECT_EQ(property->GetConnectedAsset(4), nullptr);
    EXPECT_FALSE(find(*library.findMaterial("late")->asset, "Hidden")->HasConnections());
    EXPECT_EQ(library.referenceCount(), 0u);
}

TEST(AssetConnections, OfTheGenericTable)
{
    AssetFiles files;
    files.add("a.json", materialFile(R"("genericProperties": {
        "x": 1, "c": {"type": "color", "connected": {"schema": "T"}}})"));
    const Library library = files.library();
    const platform::IPropertyConstTable* table =
        library.materials()[0].asset->GetGenericPropertyTable();
    ASSERT_TRUE(table);
    EXPECT_EQ(table->GetPropertyCount(), 2u);
    EXPECT_EQ(connected(find(*table, "c")), std::vector<std::string>{"(T)"});
    EXPECT_EQ(find(*table, "Hidden"), nullptr);
}

TEST(AssetConnections, ThatFailAreReported)
{
    const auto errors = [](const std::string& a, const std::string& b = {})
    {
        AssetFiles files;
        files.add("a.json", a);
        if (!b.empty())
            files.add("b.json", b);
        return files.errors();
    };
    using Lines = std::vector<std::string>;
    const std::string place = "a.json: /materials/0/properties/c/connected";

    EXPECT_EQ(errors(file(asset("m", R"(["x", "m2"])"), asset("m2", "\"\""))),
              (Lines{place + "/0: expected the id of an asset, no loaded file has \"x\"",
                     "a.json: /textures/0/properties/c/connected: expected the id of an asset, no "
                     "loaded file has \"\""}));
    EXPECT_EQ(errors(file(asset("m", "\"m\""))),
              (Lines{place + ": expected connections without a cycle, found \"m\" > \"m\""}));
    EXPECT_EQ(errors(file(asset("m", "\"t\"")), file("", asset("t", R"({"schema": "S", "properties":
                          {"c": {"type": "text", "connected": "m"}}})"))),
              (Lines{"b.json: /textures/0/properties/c/connected/properties/c/connected: expected "
                     "connections without a cycle, found \"m\" > \"t\" > \"m\""}));
    // Two ways to one texture are none.
    EXPECT_EQ(errors(file(asset("m", R"(["a", "b"])"), asset("a", "\"b\"") + "," + asset("b"))),
              Lines());
    // An id that may be in the file that could not be read is no error of this one.
    EXPECT_EQ(errors(file(asset("m", "\"x\"")), "[").size(), 1u);
    EXPECT_EQ(errors(file(asset("m")), file(asset("m"))),
              (Lines{"b.json: /materials/0/id: expected an id of its own, \"m\" belongs to a.json: "
                     "/materials/0"}));
}

TEST(AssetConnections, MayBeLongChains)
{
    constexpr int length = 100000;
    const auto chain = [](const std::string& last)
    {
        std::string textures = asset("t0", last);
        for (int i = 1; i < length; ++i)
            textures += "," + asset("t" + std::to_string(i), "\"t" + std::to_string(i - 1) + "\"");
        return file("", textures);
    };
    AssetFiles good;
    EXPECT_EQ(good.add("a.json", chain("")).errors(), std::vector<std::string>());
    AssetFiles bad;
    const auto errors =
        bad.add("a.json", chain("\"t" + std::to_string(length - 1) + "\"")).errors();
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_LT(errors[0].size(), 300u);
}

} // namespace

} // namespace vyr::assetlib::tests
