#include <atomic>
#include <thread>

#include "AssetFiles.h"

namespace vyr::assetlib::tests
{

namespace
{

AssetPointer connectedAsset(const platform::IProperty& property, std::size_t index = 0)
{
    return AssetPointer(property.GetConnectedAsset(index));
}

/// The ids of what a property is connected to, for inline assets the schemas.
Lines connected(const platform::IProperty* property)
{
    Lines ids;
    for (std::size_t i = 0; property && i < property->GetConnectionCount(); ++i)
    {
        const AssetPointer asset = connectedAsset(*property, i);
        ids.push_back(text(*asset, &platform::IAssetInstance::GetIdentifier));
        if (ids.back().empty())
            ids.back() = text(*asset->GetDefinition(), &platform::IAssetDefinition::GetName);
    }
    return ids;
}

std::string asset(const std::string& id, const std::string& connected = "[]")
{
    return R"({"id": ")" + id +
           R"(", "schema": "S", "properties": {"p": {"type": "reference", "connected": )" +
           connected + "}}}";
}

std::string file(const std::string& materials, const std::string& textures = {})
{
    return memberFile(R"("materials": [)" + materials + R"(], "textures": [)" + textures + "]");
}

TEST(AssetConnections, CrossFilesAndKeepTheirOrder)
{
    AssetFiles files;
    files.add("a.json", file(asset("m", R"(["late", {"schema": "Inline", "properties": {
                            "p": {"type": "uri", "connected": ["late"]}}}, "t", "late"])")));
    files.add("b.json", file(R"({"id": "late", "schema": "S", "genericProperties": {"x": 1,
                   "c": {"type": "color", "connected": {"schema": "T"}}}})",
                             asset("t", "\"late\"")));
    const Library library = files.library();
    const platform::IProperty* property = find(library, "p");
    EXPECT_TRUE(property->HasConnections());
    EXPECT_EQ(connected(property), (Lines{"late", "Inline", "t", "late"}));
    EXPECT_EQ(connected(connectedAsset(*property, 1)->FindProperty("p")), Lines{"late"});
    EXPECT_EQ(property->GetConnectedAsset(4), nullptr);
    EXPECT_FALSE(find(library, "Hidden", 1)->HasConnections());
    EXPECT_EQ(library.referenceCount(), 0u);
}

TEST(AssetConnections, ThatFailAreReported)
{
    const auto errors = [](const std::string& a, const std::string& b = file(""))
    {
        AssetFiles files;
        return files.add("a.json", a).add("b.json", b).errors();
    };
    const std::string place = "a.json:1:117: /materials/0/properties/p/connected";
    const std::string cycle = ": expected connections without a cycle, found \"m\" > ";
    const std::string noFile = ": expected the id of an asset, no loaded file has ";

    EXPECT_EQ(errors(file(asset("m", R"(["x", "m2"])"), asset("m2", "\"\""))),
              (Lines{"a.json:1:118: /materials/0/properties/p/connected/0" + noFile + "\"x\"",
                     "a.json:1:230: /textures/0/properties/p/connected" + noFile + "\"\""}));
    EXPECT_EQ(errors(file(asset("m", "\"m\""))), Lines{place + cycle + "\"m\""});
    EXPECT_EQ(errors(file(asset("m", "\"t\"")), file("", asset("t", R"({"schema": "S", "properties":
                          {"c": {"type": "text", "connected": "m"}}})"))),
              Lines{"b.json:2:63: /textures/0/properties/p/connected/properties/c/connected" +
                    cycle + "\"t\" > \"m\""});
    // Two ways to one texture are none.
    EXPECT_EQ(errors(file(asset("m", R"(["a", "b"])"), asset("a", "\"b\"") + "," + asset("b"))),
              Lines());
    // An id that may be in the file that could not be read is no error of this one.
    EXPECT_EQ(errors(file(asset("m", "\"x\"")), "[").size(), 1u);
    EXPECT_EQ(
        errors(file(asset("m")), file(asset("m"))),
        Lines{"b.json:1:42: /materials/0/id: expected an id of its own, \"m\" belongs to a.json: "
              "/materials/0"});
}

/// All that a load of many assets tells.
Lines contentOf(const AssetFiles& files, unsigned threads)
{
    const LoadResult result = load(files.paths, {{}, threads});
    Lines lines;
    for (const LoadError& error : result.errors)
        lines.push_back(files.relative(error.format()));
    for (const LoadWarning& warning : result.warnings)
        lines.push_back(files.relative(warning.format()));
    if (!result.library)
        return lines;
    for (const Material& material : result.library->materials())
        lines.push_back(material.id + material.pointer + material.schema +
                        connected(material.asset->FindProperty("p")).front() +
                        std::to_string(result.library->findMaterial(material.id) == &material));
    return lines;
}

TEST(AssetConnections, AreTheSameForEveryNumberOfThreads)
{
    constexpr int count = 3001;
    std::string good;
    std::string bad;
    for (int i = 0; i < count; ++i)
    {
        const std::string separator = i == 0 ? "" : ",\n";
        const std::string name = std::to_string(i);
        good += separator + asset(name, i == 0 ? R"({"schema": "Inline", "properties": {
            "u": {"type": "uri", "value": "WALL.png"}}})"
                                               : '"' + std::to_string(i / 2) + '"');
        // Ids that come again, ids that are missing, circles, no asset at all.
        bad += separator + (i % 500 == 7 ? std::string("[]")
                                         : asset(std::to_string(i % 2900),
                                                 '"' + std::to_string(i * 2 % 3100) + '"'));
    }
    for (const std::string& materials : {good, bad})
    {
        AssetFiles files;
        files.folder.write("wall.png", "");
        files.add("a.json", file(asset("first", "\"last\""))).add("b.json", file(materials));
        files.add("c.json", file(asset("last", "\"3000\"")));
        const Lines expected = contentOf(files, 1);
        EXPECT_GT(expected.size(), 100u);
        for (const unsigned threads : {2u, 3u, 64u})
            EXPECT_EQ(contentOf(files, threads), expected) << threads;
    }
}

TEST(AssetConnections, MayBeLongChains)
{
    constexpr int length = 30000;
    const auto errors = [](const std::string& last)
    {
        std::string textures = asset("t0", last);
        for (int i = 1; i < length; ++i)
            textures += "," + asset("t" + std::to_string(i), "\"t" + std::to_string(i - 1) + "\"");
        AssetFiles files;
        return files.add("a.json", file("", textures)).errors();
    };
    EXPECT_EQ(errors("[]"), Lines());
    const Lines cycle = errors("\"t" + std::to_string(length - 1) + "\"");
    ASSERT_EQ(cycle.size(), 1u);
    EXPECT_LT(cycle[0].size(), 300u);
}

/// Two materials that share a texture.
Library sharedTexture()
{
    AssetFiles files;
    files.add("f.json", file(asset("a", "\"t\"") + "," + asset("b", "\"t\""), asset("t")));
    return files.library();
}

TEST(AssetConnections, OutliveTheLibrary)
{
    AssetPointer clone, texture;
    {
        const Library library = sharedTexture();
        clone.reset(library.materials()[0].asset->Clone());
        EXPECT_NE(clone.get(), library.materials()[0].asset);
        texture = connectedAsset(*clone->FindProperty("p"));
        EXPECT_EQ(library.referenceCount(), 2u);
        // One texture is one object, whoever asks.
        EXPECT_EQ(connectedAsset(*find(library, "p", 1)), texture);
    }
    EXPECT_EQ(text(*clone, &platform::IAssetInstance::GetIdentifier), "a");
    clone.reset();
    EXPECT_EQ(text(*texture, &platform::IAssetInstance::GetIdentifier), "t");
    const AssetPointer copy(texture->Clone());
    texture.reset();
    EXPECT_TRUE(copy->FindProperty("VersionGUID"));
}

TEST(AssetConnections, AreReadClonedAndReleasedBySeveralThreads)
{
    const Library library = sharedTexture();
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (std::size_t number = 0; number < 4; ++number)
        threads.emplace_back(
            [&, number]
            {
                for (int i = 0; i < 2000; ++i)
                {
                    AssetPointer clone(library.materials()[number % 2].asset->Clone());
                    const AssetPointer texture = connectedAsset(*clone->FindProperty("p"));
                    clone.reset();
                    if (text(*texture, &platform::IAssetInstance::GetIdentifier) != "t")
                        ++wrong;
                }
            });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(library.referenceCount(), 0u);
}

} // namespace

} // namespace vyr::assetlib::tests
