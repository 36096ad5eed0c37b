#include "baking/NoiseImage.h"

#include "baking/Bits.h"
#include "baking/NoiseRows.h"
#include "baking/Reference.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

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

NoiseShade shadeOf(const Noise& noise, int channels)
{
    return {std::string_view(noise.type) != "noise_turbulence",
            noise.thresholdLow,
            noise.thresholdHigh,
            channels,
            {noise.color1[0], noise.color1[1], noise.color1[2]},
            {noise.color2[0], noise.color2[1], noise.color2[2]}};
}

/// Compares each kernel set and the whole bake with the reference.
void expectExact(const Noise& noise, int width, int height, int channels)
{
    const std::string_view type = noise.type;
    const OIIO::ImageBuf expected = plainNoise(noise, width, height, channels);
    const NoiseField field{width,
                           height,
                           noise.size,
                           noise.phase,
                           type == "noise_regular" ? 1 : static_cast<int>(std::ceil(noise.levels)),
                           type == "noise_turbulence"};
    const auto describe = [&]
    {
        return ::testing::Message()
               << width << " x " << height << " x " << channels << ' ' << noise.type << " size "
               << noise.size << " phase " << noise.phase << " levels " << noise.levels
               << " thresholds " << noise.thresholdLow << ' ' << noise.thresholdHigh;
    };
    for (const KernelSet& set : kernelSets())
    {
        OIIO::ImageBuf image(expected.spec());
        bakeNoiseRows(field, shadeOf(noise, channels), set, 0, height,
                      static_cast<float*>(image.localpixels()));
        ASSERT_EQ(differentFloats(image, expected), 0U) << set.name << ' ' << describe();
    }
    ASSERT_EQ(differentFloats(bakeNoiseImage(parameters(noise, width, height, channels)), expected),
              0U)
        << describe();
}

Noise noiseOf(const char* type, float size, float phase, float levels = 1.0F)
{
    Noise noise;
    noise.type = type;
    noise.size = size;
    noise.phase = phase;
    noise.levels = levels;
    noise.thresholdLow = 0.2F;
    noise.thresholdHigh = 0.8F;
    return noise;
}
} // namespace

TEST(NoiseKernel, EqualsTheReferenceForAllShapes)
{
    constexpr int kSizes[][2] = {{1, 1}, {1, 77}, {300, 1}, {3, 5}, {257, 66}, {15, 17}, {511, 2}};
    for (const auto& size : kSizes)
    {
        for (const char* type : kTypes)
        {
            expectExact(noiseOf(type, 3.0F, 0.3F, 2.0F), size[0], size[1], 1);
            expectExact(noiseOf(type, 3.0F, 1.0F, 2.0F), size[0], size[1], 3);
        }
    }
    expectExact(noiseOf("noise_fractal", 1.0F, 0.0F, 3.0F), 1023, 1025, 1);
}

TEST(NoiseKernel, EqualsTheReferenceForAllLevelsAndPhases)
{
    constexpr float kPhases[] = {0.0F,   -0.0F, 1.0F,   2.0F,      3.0F,      -1.0F,
                                 -2.0F,  0.5F,  -0.25F, 17.75F,    1e-8F,     1e9F,
                                 -1e10F, 3e38F, kNan,   kInfinity, -kInfinity};
    for (const char* type : kTypes)
    {
        for (const float phase : kPhases)
        {
            expectExact(noiseOf(type, 2.0F, phase, 2.0F), 61, 43, 1);
        }
        for (float levels = 0.5F; levels <= 8.0F; levels += 0.5F)
        {
            expectExact(noiseOf(type, 7.0F, 0.0F, levels), 61, 43, 1);
            expectExact(noiseOf(type, 7.0F, 0.6F, levels), 61, 43, 1);
        }
    }
    expectExact(noiseOf("noise_fractal", 7.0F, 0.6F, 31.75F), 61, 43, 1);
}

TEST(NoiseKernel, EqualsTheReferenceForAllSizesAndThresholds)
{
    constexpr float kSizes[] = {1e-44F, 1e-38F, 1e-9F, 1e-6F, 5e-6F,    1e-3F,
                                0.1F,   100.0F, 1e5F,  1e30F, kInfinity};
    constexpr float kThresholds[][2] = {{0.0F, 0.0F}, {0.5F, 0.5F},  {0.3F, 0.7F},
                                        {0.7F, 0.3F}, {-1.0F, 2.0F}, {-kInfinity, kInfinity},
                                        {kNan, 0.5F}, {0.5F, kNan},  {0.45F, 0.4500001F}};
    for (const char* type : kTypes)
    {
        for (const float size : kSizes)
        {
            expectExact(noiseOf(type, size, 0.0F, 3.0F), 97, 53, 1);
            expectExact(noiseOf(type, size, 2.3F, 3.0F), 97, 53, 1);
        }
        for (const auto& thresholds : kThresholds)
        {
            Noise noise = noiseOf(type, 10.0F, 0.0F, 2.0F);
            noise.thresholdLow = thresholds[0];
            noise.thresholdHigh = thresholds[1];
            noise.color1[1] = -3.5F;
            noise.color2[2] = 1e20F;
            expectExact(noise, 97, 53, 3);
            expectExact(noise, 97, 53, 1);
        }
    }
}

/// Against a fault that reference and kernels share: values of a separate program in double precision, written
/// from the formulas as weighted sums over the corners.
TEST(NoiseImage, HasTheKnownValues)
{
    struct Point
    {
        float at[4];
        float value;
    };
    constexpr Point kPoints[] = {
        {{0.5F, 0.5F, 0.0F, 0.0F}, 0.2175F},       {{0.25F, 2.75F, 0.0F, 0.0F}, 0.262529297F},
        {{7.3F, 1.6F, 0.0F, 0.4F}, -0.039818127F}, {{-4.2F, 3.1F, 2.7F, -1.3F}, 0.363948230F},
        {{3.0F, 5.0F, 0.0F, 1.0F}, 0.0F},
    };
    for (const Point& point : kPoints)
    {
        const float(&p)[4] = point.at;
        EXPECT_NEAR(reference::noise4(p[0], p[1], p[2], p[3]), point.value, 2e-6F) << p[0];
    }
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
    struct Case
    {
        const char* name;
        float OIIO::ImageSpec::* unused;
    };
    const Noise one = noiseOf("noise_fractal", 1.0F, 0.25F, 1.0F);
    const OIIO::ImageBuf expected = plainNoise(one, 40, 30, 1);
    for (const float notPositive : {0.0F, -5.0F, -kInfinity, kNan})
    {
        Noise noise = one;
        noise.size = notPositive;
        noise.levels = notPositive;
        const OIIO::ImageSpec spec = parameters(noise, 40, 30, 1);
        const OIIO::ImageBuf image = bakeNoiseImage(spec);
        EXPECT_EQ(differentFloats(image, expected), 0U) << notPositive;
        EXPECT_EQ(image.spec().get_float_attribute("noise_Size"), 1.0F);
        EXPECT_EQ(image.spec().get_float_attribute("noise_Levels"), 1.0F);
        EXPECT_TRUE(noiseWarnings(spec).empty());
    }
    for (const float many : {32.5F, 1e9F, kInfinity})
    {
        Noise noise = one;
        noise.levels = 32.0F;
        const OIIO::ImageBuf most = plainNoise(noise, 40, 30, 1);
        noise.levels = many;
        const OIIO::ImageSpec spec = parameters(noise, 40, 30, 1);
        EXPECT_EQ(differentFloats(bakeNoiseImage(spec), most), 0U) << many;
        EXPECT_EQ(noiseWarnings(spec).size(), 1U) << many;
    }
}

TEST(NoiseImage, HasThreeChannelsWhenBothColoursAreGiven)
{
    OIIO::ImageSpec spec = parameters(noiseOf("Noise_TURBULENCE", 5.0F, 0.0F), 9, 7, 3);
    const OIIO::ImageBuf image = bakeNoiseImage(spec);
    EXPECT_EQ(image.nchannels(), 3);
    EXPECT_EQ(image.name(), "noise_image");
    spec.erase_attribute("noise:color2");
    EXPECT_EQ(bakeNoiseImage(spec).nchannels(), 1);

    // Both thresholds at their default: all is the second colour but where v is exactly 0.
    Noise noise;
    noise.color2[0] = 0.25F;
    noise.size = 5.0F;
    const OIIO::ImageBuf plain = bakeNoiseImage(parameters(noise, 31, 31, 3));
    EXPECT_EQ(plain.getchannel(13, 17, 0, 0), 0.25F);
}

TEST(NoiseImage, IsTheSameForEveryThreadCountAndSplit)
{
    const Noise noise = noiseOf("noise_fractal", 2.0F, 0.4F, 3.0F);
    const OIIO::ImageSpec spec = parameters(noise, 313, 211, 1);
    const OIIO::ImageBuf expected = plainNoise(noise, 313, 211, 1);
    for (const int threads : {1, 0, 2, 3, 16})
    {
        EXPECT_EQ(differentFloats(bakeNoiseImage(spec, threads), expected), 0U) << threads;
    }
    const NoiseField field{313, 211, 2.0F, 0.4F, 3, false};
    OIIO::ImageBuf image(expected.spec());
    constexpr int kSplits[] = {0, 1, 64, 65, 130, 131, 210, 211};
    for (std::size_t i = 0; i + 1 < std::size(kSplits); ++i)
    {
        bakeNoiseRows(field, shadeOf(noise, 1), kernels(), kSplits[i], kSplits[i + 1],
                      static_cast<float*>(image.pixeladdr(0, kSplits[i])));
    }
    EXPECT_EQ(differentFloats(image, expected), 0U);
    const FlushedDenormals flushed;
    EXPECT_EQ(differentFloats(bakeNoiseImage(spec, 1), expected), 0U);
}

TEST(NoiseImage, OfAnUnknownTypeIsAnError)
{
    OIIO::ImageSpec spec = parameters(noiseOf("noise_plaid", 5.0F, 0.0F), 9, 7, 1);
    ::testing::internal::CaptureStderr();
    OIIO::ImageBuf image = bakeNoiseImage(spec);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Unsupported Noise type:noise_plaid\n");
    EXPECT_EQ(image.geterror(), "Unsupported Noise type");
    EXPECT_EQ(image.getchannel(8, 6, 0, 0), 0.0F);

    OIIO::ImageBuf nothing =
        bakeNoiseImage(parameters(noiseOf("noise_regular", 5.0F, 0.0F), 0, 7, 1));
    EXPECT_FALSE(nothing.initialized());
    EXPECT_FALSE(nothing.geterror().empty());
}
} // namespace vyr::MaterialTranslation::baking
