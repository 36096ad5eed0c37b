#include "baking/BakedFiles.h"

#include "baking/Bits.h"
#include "baking/ImageFile.h"
#include "baking/NoiseImage.h"
#include "baking/NormalImage.h"
#include "baking/PngCompression.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

namespace vyr::MaterialTranslation::baking
{
namespace
{
using support::TemporaryFolder;

OIIO::ImageBuf heights(int size)
{
    OIIO::ImageBuf image(OIIO::ImageSpec(size, size, 1, OIIO::TypeFloat));
    std::mt19937 random(1);
    for (OIIO::ImageBuf::Iterator<float> i(image); !i.done(); ++i)
        i[0] = static_cast<float>(random() % 256) / 255.0F;
    return image;
}

NoiseBakeOptions noiseOptions(int size)
{
    NoiseBakeOptions options;
    options.width = options.height = size;
    options.type = "noise_fractal";
    options.size = 10.0F;
    options.levels = 3.0F;
    options.thresholdLow = 0.1F;
    options.thresholdHigh = 0.9F;
    return options;
}
} // namespace

TEST(BakedFiles, OfBumpImagesHoldTheBake)
{
    const TemporaryFolder folder;
    const OIIO::ImageBuf height = heights(32);
    BumpImage bump;
    bump.image = folder / "bröck.v2.exr";
    bump.folder = folder / "out" / "wall";
    writeImage(height, bump.image);
    const BakedFile baked = bakeBumpImage(bump);
    ASSERT_TRUE(baked.result.success) << baked.result.message;
    EXPECT_EQ(baked.path, bump.folder / "bröck.v2_normalmap.png");
    writeImage(bakeNormalImage(height, {}), folder / "expected.png");
    EXPECT_EQ(support::readFile(baked.path), support::readFile(folder / "expected.png"));

    NormalBakeOptions options;
    options.bumpAmount = 0.5F;
    options.realWorldScale = {2.0F, 4.0F};
    options.bumpScale = {1.0F, 3.0F};
    ASSERT_TRUE(bakeNormalMapFile(bump.image, folder / "normal.exr", options).success);
    OIIO::ImageSpec parameters;
    const OIIO::TypeDesc pair(OIIO::TypeDesc::FLOAT, 2);
    parameters.attribute("bump_amount", 0.5F);
    parameters.attribute("real_world_scale", pair, options.realWorldScale.data());
    parameters.attribute("bump_scale", pair, options.bumpScale.data());
    OIIO::ImageBuf normal(TemporaryFolder::utf8(folder / "normal.exr"));
    normal.read(0, 0, true, OIIO::TypeFloat);
    EXPECT_TRUE(sameBits(normal, bakeNormalImage(height, parameters)));
}

TEST(BakedFiles, OfNoiseHoldItsNormalsInItsSize)
{
    const TemporaryFolder folder;
    NoiseBump bump;
    bump.noise = noiseOptions(64);
    bump.noise.levels = 40.0F;
    bump.bumpAmount = 0.25F;
    bump.folder = folder / "wall";
    bump.nodeName = "noise";
    const BakedFile baked = bakeNoiseBump(bump);
    EXPECT_EQ(baked.path, folder / "wall" / "noise_64normal_map.png") << baked.result.message;
    EXPECT_EQ(baked.result.warnings.size(), 1U);
    ASSERT_TRUE(bakeNoiseFile(folder / "noise.exr", bump.noise).success);
    NormalBakeOptions options;
    options.bumpAmount = 0.25F;
    ASSERT_TRUE(bakeNormalMapFile(folder / "noise.exr", folder / "expected.png", options).success);
    EXPECT_EQ(support::readFile(baked.path), support::readFile(folder / "expected.png"));

    bump.noise.width = 45;
    bump.noise.color1 = bump.noise.color2 = {0.1F, 0.2F, -3.0F};
    ASSERT_TRUE(bakeNoiseFile(folder / "noise.tif", bump.noise).success);
    const OIIO::ImageBuf image(TemporaryFolder::utf8(folder / "noise.tif"));
    EXPECT_EQ(image.spec().width, 45);
    EXPECT_EQ(image.nchannels(), 3);
}

TEST(BakedFiles, AreNotMadeFromNonsense)
{
    const TemporaryFolder folder;
    writeImage(heights(8), folder / "height.png");
    NormalBakeOptions noScale;
    noScale.bumpAmount = 1.0F;
    noScale.realWorldScale = {0.0F, 1.0F};
    NoiseBakeOptions unknown = noiseOptions(8);
    unknown.type = "noise_plaid";
    ::testing::internal::CaptureStderr();
    const std::pair<BakeResult, const char*> results[] = {
        {bakeNormalMapFile(folder / "height.png", folder / "height.png"), "overwrite"},
        {bakeNormalMapFile(folder / "height.png", folder / "a.jpg"), "JPEG"},
        {bakeNormalMapFile(folder / "height.png", folder / "a.png", noScale), "is no number"},
        {bakeNoiseFile(folder / "a.png", unknown), "Unsupported Noise type: noise_plaid"},
        {bakeNoiseFile(folder / "a.png", noiseOptions(1 << 20)), "more than the limit"},
        {bakeNoiseFile(folder / "a.png", NoiseBakeOptions()), "is no image"},
    };
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Unsupported Noise type:noise_plaid\n");
    for (const auto& [result, reason] : results)
        EXPECT_NE(result.message.find(reason), std::string::npos) << result.message;
    EXPECT_EQ(folder.entries().size(), 1U);
}

TEST(EncodePng, IsNotMuchLargerThanByDefault)
{
    constexpr int kSize = 512;
    for (const bool grained : {true, false})
    {
        OIIO::ImageBuf height = heights(kSize);
        for (OIIO::ImageBuf::Iterator<float> i(height); !grained && !i.done(); ++i)
            i[0] = std::fmod(static_cast<float>(i.x()) * 0.05F +
                                 std::sin(static_cast<float>(i.y()) * 0.02F),
                             1.0F);
        const OIIO::ImageBuf image = bakeNormalImage(height, {}).copy(OIIO::TypeUInt8);
        const auto* pixels = static_cast<const unsigned char*>(image.localpixels());
        const auto byDefault =
            encodeImage("image.png", image.spec(), OIIO::TypeUInt8, pixels).size();
        const auto chosen = encodePng(pixels, image.spec()).size();
        EXPECT_LE(static_cast<double>(chosen),
                  (grained ? 1.05 : 1.3) * static_cast<double>(byDefault));
        EXPECT_NE(chosen, byDefault) << "compressed by default, which is the slowest way";
    }
}
} // namespace vyr::MaterialTranslation::baking
