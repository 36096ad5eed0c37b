#include <atomic>
#include <thread>

#include <gtest/gtest.h>

#include "AssetFiles.h"

namespace vyr::assetlib::tests
{

namespace
{

/// Two materials that share a texture.
Library sharedTexture()
{
    AssetFiles files;
    files.add("f.json",
              R"({"assetLibrary": 1, "textures": [{"id": "t", "schema": "T"}], "materials": [
        {"id": "a", "schema": "S", "properties": {"c": {"type": "color", "connected": "t"}}},
        {"id": "b", "schema": "S", "properties": {"c": {"type": "color", "connected": "t"}}}]})");
    return files.library();
}

TEST(AssetLifetime, AReferenceOutlivesTheLibrary)
{
    platform::IAssetInstance* clone = nullptr;
    platform::IAssetInstance* texture = nullptr;
    {
        const Library library = sharedTexture();
        const platform::IAssetInstance& original = *library.materials()[0].asset;
        clone = original.Clone();
        EXPECT_NE(clone, &original);
        texture = find(*clone, "c")->GetConnectedAsset(0);
        EXPECT_EQ(library.referenceCount(), 2u);
        // One texture is one object, whoever asks.
        platform::IAssetInstance* again =
            find(*library.materials()[1].asset, "c")->GetConnectedAsset(0);
        EXPECT_EQ(again, texture);
        again->Release();
    }
    EXPECT_EQ(text(*clone, &platform::IAssetInstance::GetIdentifier), "a");
    clone->Release();
    EXPECT_EQ(text(*texture, &platform::IAssetInstance::GetIdentifier), "t");
    platform::IAssetInstance* copy = texture->Clone();
    texture->Release();
    EXPECT_TRUE(find(*copy, "VersionGUID"));
    copy->Release();
}

TEST(AssetLifetime, SeveralThreadsReadCloneAndRelease)
{
    constexpr int threadCount = 4;
    constexpr int rounds = 2000;
    const Library library = sharedTexture();
    std::atomic<int> wrong = 0;
    const auto work = [&](std::size_t number)
    {
        for (int i = 0; i < rounds; ++i)
        {
            platform::IAssetInstance* clone = library.materials()[number % 2].asset->Clone();
            platform::IAssetInstance* texture = find(*clone, "c")->GetConnectedAsset(0);
            clone->Release();
            if (text(*texture, &platform::IAssetInstance::GetIdentifier) != "t")
                ++wrong;
            texture->Release();
        }
    };
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < threadCount; ++i)
        threads.emplace_back(work, i);
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(library.referenceCount(), 0u);
}

} // namespace

} // namespace vyr::assetlib::tests
