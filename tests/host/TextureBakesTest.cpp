#include <limits>

#include <gtest/gtest.h>

#include <MaterialTranslation/Bakes.h>

#include "support/TemporaryFolder.h"

namespace vyr::MaterialTranslation
{

TEST(BakeTextureFile, TakesWhatIsInRangeAndRefusesWhatIsUnknown)
{
    const support::TemporaryFolder folder;
    const auto bake = [&](const char* schema, std::vector<TextureProperty> properties)
    {
        TextureBakeOptions options;
        options.schema = schema;
        options.properties = std::move(properties);
        options.width = options.height = 8;
        return bakeTextureFile(folder / "image.png", options);
    };
    const struct
    {
        const char* schema;
        TextureProperty property;
        const char* reason;
    } refused[] = {
        {"BrickSchema", {}, "\"BrickSchema\""},
        {"TileSchema", {"tile_Size", {1.0f}, {}}, "tile_Size"},
        {"TileSchema", {"tile_Bond", {}, "tile_round"}, "\"tile_round\" is none of tile_stack"},
        {"TileSchema", {"tile_Color", {1.0f}, {}}, "needs 3 numbers"},
        {"TileSchema", {"tile_Seed", {1.0f, 2.0f}, {}}, "needs 1 number"},
        {"TileSchema", {"tile_Seed", {1.5f}, {}}, "whole"},
        {"GradientSchema", {"gradient_Color2", {0.0f, 0.0f, 1.0f}, {}}, "gradient_Color2"},
        {"WaveSchema", {"wave_Phase", {std::numeric_limits<float>::quiet_NaN()}, {}}, "finite"},
        {"WaveSchema", {"wave_Length", {std::numeric_limits<float>::infinity()}, {}}, "finite"},
    };
    for (const auto& [schema, property, reason] : refused)
    {
        const BakeResult result = bake(schema, {property});
        EXPECT_FALSE(result.success) << reason;
        EXPECT_NE(result.message.find(reason), std::string::npos) << result.message;
        EXPECT_TRUE(folder.entries().empty());
    }
    const BakeResult result = bake("TileSchema", {{"tile_Seed", {-1.0f}, {}}});
    EXPECT_TRUE(result.success) << result.message;
    ASSERT_EQ(result.warnings.size(), 1U);
    EXPECT_NE(result.warnings[0].find("tile_Seed: -1 is outside of 0 to 1"), std::string::npos);
}

} // namespace vyr::MaterialTranslation
