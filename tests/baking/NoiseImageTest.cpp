#include "baking/NoiseImage.h"

#include <random>
#include <tuple>

#include <gtest/gtest.h>

#include "baking/Images.h"
#include "baking/Reference.h"

namespace vyr::MaterialTranslation::baking
{

namespace
{

constexpr const char* types[] = {"noise_regular", "noise_fractal", "noise_turbulence"};

NoiseBakeOptions noiseOf(const char* type, int width, int height, float size, float phase,
                         float levels = 1.0f)
{
    NoiseBakeOptions noise;
    noise.width = width;
    noise.height = height;
    noise.type = type;
    noise.color1 = {0.0f, -3.5f, 0.0f};
    noise.size = size;
    noise.thresholdLow = 0.2f;
    noise.thresholdHigh = 0.8f;
    noise.levels = levels;
    noise.phase = phase;
    return noise;
}

OIIO::ImageBuf plainNoise(const NoiseBakeOptions& noise)
{
    OIIO::ImageBuf image(
        OIIO::ImageSpec(noise.width, noise.height, noise.color2 ? 3 : 1, OIIO::TypeFloat));
    reference::bakeNoiseRows(noise, 0, noise.height, image);
    return image;
}

void expectExact(const NoiseBakeOptions& noise)
{
    const OIIO::ImageBuf expected = plainNoise(noise);
    for (const KernelSet& set : kernelSets())
        ASSERT_TRUE(sameBits(bakeNoise(noise, set), expected)) << set.name;
}

} // namespace

TEST(NoiseKernel, EqualsTheReferenceInEveryBit)
{
    constexpr int shapes[][2] = {{61, 43}, {1, 1},    {1, 77},  {300, 1},
                                 {3, 5},   {257, 66}, {15, 17}, {511, 2}};
    constexpr float phases[] = {0.3f,   0.0f,   -0.0f, 1.0f, 2.0f,   3.0f,  -1.0f, 0.5f,
                                -0.25f, 17.75f, 1e-8f, 1e9f, -1e10f, 3e38f, nan,   infinity};
    constexpr float sizes[] = {3.0f,  1e-44f, 1e-38f, 1e-9f, 1e-6f, 5e-6f,
                               1e-3f, 0.1f,   100.0f, 1e5f,  1e30f, infinity};
    constexpr float levels[] = {2.0f, 0.5f, 1.0f, 1.5f, 2.5f, 3.0f, 4.0f, 5.5f, 8.0f, 31.75f};
    constexpr std::pair<float, float> thresholds[] = {
        {0.2f, 0.8f},  {0.0f, 0.0f}, {0.5f, 0.5f}, {0.3f, 0.7f},        {0.7f, 0.3f},
        {-1.0f, 2.0f}, {nan, 0.5f},  {0.5f, nan},  {0.45f, 0.4500001f}, {-infinity, infinity}};
    std::mt19937 random(5);
    // Mostly the first of a list, so that one odd value at a time can show.
    const auto any = [&](const auto& list) -> const auto&
    { return list[random() % 2 == 0 ? 0 : random() % std::size(list)]; };
    for (std::size_t i = 0; i < 400; ++i)
    {
        const auto& [width, height] = any(shapes);
        NoiseBakeOptions noise =
            noiseOf(types[i % 3], width, height, any(sizes), any(phases), any(levels));
        std::tie(noise.thresholdLow, noise.thresholdHigh) = any(thresholds);
        if (i % 2 == 1)
            noise.color2 = {1.0f, 1.0f, 1e20f};
        SCOPED_TRACE(i);
        expectExact(noise);
    }
    // In blocks of rows, side by side.
    NoiseBakeOptions large = noiseOf("noise_fractal", 523, 525, 1.0f, 0.4f, 3.0f);
    large.threads = 3;
    expectExact(large);
}

/// Against a fault that reference and kernels share: values of a separate program in double precision, written
/// from the formulas as weighted sums over the corners.
TEST(NoiseImage, HasTheKnownValues)
{
    constexpr float points[][5] = {
        {0.5f, 0.5f, 0.0f, 0.0f, 0.2175f},       {0.25f, 2.75f, 0.0f, 0.0f, 0.262529297f},
        {7.3f, 1.6f, 0.0f, 0.4f, -0.039818127f}, {-4.2f, 3.1f, 2.7f, -1.3f, 0.363948230f},
        {3.0f, 5.0f, 0.0f, 1.0f, 0.0f},
    };
    for (const auto& [x, y, z, w, value] : points)
        EXPECT_NEAR(reference::noise4(x, y, z, w), value, 2e-6f) << x;
    constexpr float pixel[] = {0.379771562f, 0.255091386f, 0.489817228f};
    for (std::size_t type = 0; type < std::size(types); ++type)
    {
        NoiseBakeOptions noise = noiseOf(types[type], 40, 20, 10.0f, 0.25f, 3.0f);
        noise.thresholdLow = 0.0f;
        noise.thresholdHigh = 1.0f;
        EXPECT_NEAR(bakeNoise(noise).getchannel(7, 3, 0, 0), pixel[type], 2e-6f) << types[type];
    }
}

TEST(NoiseImage, TakesItsParametersWithinTheirRanges)
{
    for (const float levels : {0.0f, -5.0f, -infinity, nan, 32.5f, infinity})
    {
        const float taken = levels > 32.0f ? 32.0f : 1.0f;
        const float size = levels > 32.0f ? 1.0f : levels; // which has the same range below
        EXPECT_TRUE(sameBits(bakeNoise(noiseOf(types[1], 40, 30, size, 0.25f, levels)),
                             plainNoise(noiseOf(types[1], 40, 30, 1.0f, 0.25f, taken))))
            << levels;
    }
    EXPECT_TRUE(bakeNoise(noiseOf(types[0], 0, 7, 5.0f, 0.0f)).has_error());
}

TEST(NoiseImage, TakesItsParametersFromAttributesAndKeepsThem)
{
    NoiseBakeOptions noise = noiseOf("Noise_TURBULENCE", 19, 7, 5.0f, 0.75f, 40.0f);
    const OIIO::TypeDesc color(OIIO::TypeDesc::FLOAT, 3);
    OIIO::ImageSpec spec(19, 7, 1, OIIO::TypeFloat);
    spec.attribute("noise:type", noise.type);
    spec.attribute("noise:color1", color, noise.color1->data());
    const std::tuple<const char*, const char*, float> numbers[] = {
        {"noise:size", "noise_Size", noise.size},
        {"noise:phase", "noise_Phase", noise.phase},
        {"noise:levels", "noise_Levels", 32.0f},
        {"noise:thresholdLow", "noise_ThresholdLow", noise.thresholdLow},
        {"noise:thresholdHigh", "noise_ThresholdHigh", noise.thresholdHigh}};
    for (const auto& [name, kept, value] : numbers)
        spec.attribute(name, value);
    const OIIO::ImageBuf gray = bakeNoiseImage(spec);
    EXPECT_EQ(gray.name(), "noise_image");
    EXPECT_TRUE(sameBits(gray, bakeNoise(noise)));
    for (const auto& [name, kept, value] : numbers)
        EXPECT_EQ(gray.spec().get_float_attribute(kept), value) << name;
    // Colours count when both are given.
    noise.color2 = {0.25f, 0.5f, 4.0f};
    spec.attribute("noise:color2", color, noise.color2->data());
    EXPECT_TRUE(sameBits(bakeNoiseImage(spec), bakeNoise(noise)));
    EXPECT_EQ(bakeNoiseImage(spec).spec().get_string_attribute("noise_Color2"), "0.25, 0.5, 4");
}

} // namespace vyr::MaterialTranslation::baking
