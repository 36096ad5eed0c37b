#include "baking/NoiseImage.h"

#include "baking/Bits.h"
#include "baking/NoiseRows.h"
#include "baking/Reference.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string_view>

namespace vyr::MaterialTranslation::baking
{
namespace
{
using reference::Noise;

constexpr const char* kTypes[] = {"noise_regular", "noise_fractal", "noise_turbulence"};
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

OIIO::ImageSpec parameters(const Noise& noise, int width, int height, int channels)
{
    OIIO::ImageSpec spec(width, height, 1, OIIO::TypeFloat);
    spec.attribute("noise:type", noise.type);
    spec.attribute("noise:size", noise.size);
    spec.attribute("noise:phase", noise.phase);
    spec.attribute("noise:levels", noise.levels);
    spec.attribute("noise:thresholdLow", noise.thresholdLow);
    spec.attribute("noise:thresholdHigh", noise.thresholdHigh);
    if (channels == 3)
    {
        const OIIO::TypeDesc color(OIIO::TypeDesc::FLOAT, 3);
        spec.attribute("noise:color1", color, noise.color1);
        spec.attribute("noise:color2", color, noise.color2);
    }
    return spec;
}

OIIO::ImageBuf plainNoise(const Noise& noise, int width, int height, int channels)
{
    OIIO::ImageBuf image(OIIO::ImageSpec(width, height, channels, OIIO::TypeFloat));
    reference::bakeNoiseRows(noise, 0, height, image);
    return image;
}

/// Bakes with one set of kernels.
OIIO::ImageBuf bakeWith(const KernelSet& set, const Noise& noise, const OIIO::ImageSpec& spec)
{
    const std::string_view type = noise.type;
    const bool turbulence = type == "noise_turbulence";
    const int octaves = type == "noise_regular" ? 1 : static_cast<int>(std::ceil(noise.levels));
    const float(&a)[3] = noise.color1;
    const float(&b)[3] = noise.color2;
    OIIO::ImageBuf image(spec);
    bakeNoiseRows({spec.width, spec.height, noise.size, noise.phase, octaves, turbulence},
                  {!turbulence,
                   noise.thresholdLow,
                   noise.thresholdHigh,
                   spec.nchannels,
                   {a[0], a[1], a[2]},
                   {b[0], b[1], b[2]}},
                  set, 0, spec.height, static_cast<float*>(image.localpixels()));
    return image;
}

/// Compares each kernel set and the whole bake with the reference.
void expectExact(const Noise& noise, int width, int height, int channels)
{
    SCOPED_TRACE(::testing::Message()
                 << width << " x " << height << " x " << channels << ' ' << noise.type << " size "
                 << noise.size << " phase " << noise.phase << " levels " << noise.levels
                 << " thresholds " << noise.thresholdLow << ' ' << noise.thresholdHigh);
    const OIIO::ImageBuf expected = plainNoise(noise, width, height, channels);
    for (const KernelSet& set : kernelSets())
        ASSERT_TRUE(sameBits(bakeWith(set, noise, expected.spec()), expected)) << set.name;
    const OIIO::ImageSpec spec = parameters(noise, width, height, channels);
    ASSERT_TRUE(sameBits(bakeNoiseImage(spec), expected));
}

Noise noiseOf(const char* type, float size, float phase, float levels = 1.0F)
{
    return {type, size, phase, levels, 0.2F, 0.8F, {0.0F, -3.5F, 0.0F}, {1.0F, 1.0F, 1e20F}};
}
} // namespace

TEST(NoiseKernel, EqualsTheReferenceInEveryBit)
{
    constexpr int kShapes[][2] = {{61, 43}, {1, 1},    {1, 77},  {300, 1},
                                  {3, 5},   {257, 66}, {15, 17}, {511, 2}};
    constexpr float kPhases[] = {0.3F,   0.0F,   -0.0F, 1.0F, 2.0F,   3.0F,  -1.0F, 0.5F,
                                 -0.25F, 17.75F, 1e-8F, 1e9F, -1e10F, 3e38F, kNan,  kInfinity};
    constexpr float kSizes[] = {3.0F,  1e-44F, 1e-38F, 1e-9F, 1e-6F, 5e-6F,
                                1e-3F, 0.1F,   100.0F, 1e5F,  1e30F, kInfinity};
    constexpr float kLevels[] = {2.0F, 0.5F, 1.0F, 1.5F, 2.5F, 3.0F, 4.0F, 5.5F, 8.0F, 31.75F};
    constexpr float kThresholds[][2] = {
        {0.2F, 0.8F},  {0.0F, 0.0F}, {0.5F, 0.5F}, {0.3F, 0.7F},        {0.7F, 0.3F},
        {-1.0F, 2.0F}, {kNan, 0.5F}, {0.5F, kNan}, {0.45F, 0.4500001F}, {-kInfinity, kInfinity}};
    std::mt19937 random(5);
    // Mostly the first of a list, so that one odd value at a time can show.
    const auto any = [&](const auto& list) -> const auto&
    { return list[random() % 2 == 0 ? 0 : random() % std::size(list)]; };
    for (std::size_t i = 0; i < 400; ++i)
    {
        const auto& [width, height] = any(kShapes);
        const auto& [low, high] = any(kThresholds);
        Noise noise = noiseOf(kTypes[i % 3], any(kSizes), any(kPhases), any(kLevels));
        noise.thresholdLow = low;
        noise.thresholdHigh = high;
        expectExact(noise, width, height, i % 2 == 0 ? 1 : 3);
    }
    expectExact(noiseOf("noise_fractal", 1.0F, 0.0F, 3.0F), 1023, 1025, 1);
}

/// Against a fault that reference and kernels share: values of a separate program in double precision, written
/// from the formulas as weighted sums over the corners.
TEST(NoiseImage, HasTheKnownValues)
{
    constexpr float kPoints[][5] = {
        {0.5F, 0.5F, 0.0F, 0.0F, 0.2175F},       {0.25F, 2.75F, 0.0F, 0.0F, 0.262529297F},
        {7.3F, 1.6F, 0.0F, 0.4F, -0.039818127F}, {-4.2F, 3.1F, 2.7F, -1.3F, 0.363948230F},
        {3.0F, 5.0F, 0.0F, 1.0F, 0.0F},
    };
    for (const auto& [x, y, z, w, value] : kPoints)
        EXPECT_NEAR(reference::noise4(x, y, z, w), value, 2e-6F) << x;
    constexpr float kPixel[] = {0.379771562F, 0.255091386F, 0.489817228F};
    for (std::size_t type = 0; type < std::size(kTypes); ++type)
    {
        Noise noise = noiseOf(kTypes[type], 10.0F, 0.25F, 3.0F);
        noise.thresholdLow = 0.0F;
        noise.thresholdHigh = 1.0F;
        const OIIO::ImageBuf image = bakeNoiseImage(parameters(noise, 40, 20, 1));
        EXPECT_NEAR(image.getchannel(7, 3, 0, 0), kPixel[type], 2e-6F) << kTypes[type];
    }
}

TEST(NoiseImage, TakesItsParametersWithinTheirRanges)
{
    for (const float levels : {0.0F, -5.0F, -kInfinity, kNan, 32.5F, kInfinity})
    {
        const bool many = levels > 32.0F;
        const Noise taken = noiseOf("noise_fractal", 1.0F, 0.25F, many ? 32.0F : 1.0F);
        const OIIO::ImageSpec spec =
            parameters(noiseOf("noise_fractal", many ? 1.0F : levels, 0.25F, levels), 40, 30, 1);
        EXPECT_EQ(noiseWarnings(spec).size(), many ? 1U : 0U) << levels;
        EXPECT_TRUE(sameBits(bakeNoiseImage(spec), plainNoise(taken, 40, 30, 1))) << levels;
    }
    // Colours count when both are given.
    OIIO::ImageSpec spec = parameters(noiseOf("Noise_TURBULENCE", 5.0F, 0.0F), 9, 7, 3);
    EXPECT_EQ(bakeNoiseImage(spec).nchannels(), 3);
    spec.erase_attribute("noise:color2");
    EXPECT_EQ(bakeNoiseImage(spec).nchannels(), 1);
    spec.width = 0;
    EXPECT_TRUE(bakeNoiseImage(spec).has_error());
}

TEST(NoiseImage, IsTheSameForEveryThreadCountAndEnvironment)
{
    const Noise noise = noiseOf("noise_fractal", 2.0F, 0.4F, 3.0F);
    const OIIO::ImageSpec spec = parameters(noise, 313, 211, 1);
    const OIIO::ImageBuf expected = plainNoise(noise, 313, 211, 1);
    for (const int threads : {1, 0, 2, 3, 16})
        EXPECT_TRUE(sameBits(bakeNoiseImage(spec, threads), expected)) << threads;
    const FlushedDenormals flushed;
    EXPECT_TRUE(sameBits(bakeNoiseImage(spec, 1), expected));
}
} // namespace vyr::MaterialTranslation::baking
