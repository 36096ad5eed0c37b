#include "baking/NoiseImage.h"

#include "baking/Bits.h"
#include "baking/NoiseRows.h"
#include "baking/Reference.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
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

/// Fills rows of an image as one set of kernels does.
void bakeRows(const Noise& noise, const KernelSet& set, int yBegin, int yEnd, OIIO::ImageBuf& image)
{
    const std::string_view type = noise.type;
    const bool turbulence = type == "noise_turbulence";
    const NoiseField field{image.spec().width,
                           image.spec().height,
                           noise.size,
                           noise.phase,
                           type == "noise_regular" ? 1 : static_cast<int>(std::ceil(noise.levels)),
                           turbulence};
    const float(&a)[3] = noise.color1;
    const float(&b)[3] = noise.color2;
    const NoiseShade shade{!turbulence,       noise.thresholdLow, noise.thresholdHigh,
                           image.nchannels(), {a[0], a[1], a[2]}, {b[0], b[1], b[2]}};
    bakeNoiseRows(field, shade, set, yBegin, yEnd, static_cast<float*>(image.pixeladdr(0, yBegin)));
}

/// Compares each kernel set and the whole bake with the reference.
void expectExact(const Noise& noise, int width = 61, int height = 43, int channels = 1)
{
    const OIIO::ImageBuf expected = plainNoise(noise, width, height, channels);
    const ::testing::ScopedTrace trace(
        __FILE__, __LINE__,
        ::testing::Message() << width << " x " << height << " x " << channels << ' ' << noise.type
                             << " size " << noise.size << " phase " << noise.phase << " levels "
                             << noise.levels << " thresholds " << noise.thresholdLow << ' '
                             << noise.thresholdHigh);
    for (const KernelSet& set : kernelSets())
    {
        OIIO::ImageBuf image(expected.spec());
        bakeRows(noise, set, 0, height, image);
        ASSERT_EQ(differentFloats(image, expected), 0U) << set.name;
    }
    const OIIO::ImageSpec spec = parameters(noise, width, height, channels);
    ASSERT_EQ(differentFloats(bakeNoiseImage(spec), expected), 0U);
}

Noise noiseOf(const char* type, float size, float phase, float levels = 1.0F)
{
    return {type, size, phase, levels, 0.2F, 0.8F, {0.0F, -3.5F, 0.0F}, {1.0F, 1.0F, 1e20F}};
}
} // namespace

TEST(NoiseKernel, EqualsTheReferenceInEveryBit)
{
    constexpr int kShapes[][2] = {{1, 1}, {1, 77}, {300, 1}, {3, 5}, {257, 66}, {15, 17}, {511, 2}};
    constexpr float kPhases[] = {0.0F,   -0.0F, 1.0F, 2.0F,   3.0F,  -1.0F, 0.5F,     -0.25F,
                                 17.75F, 1e-8F, 1e9F, -1e10F, 3e38F, kNan,  kInfinity};
    constexpr float kSizes[] = {1e-44F, 1e-38F, 1e-9F, 1e-6F, 5e-6F,    1e-3F,
                                0.1F,   100.0F, 1e5F,  1e30F, kInfinity};
    constexpr float kThresholds[][2] = {{0.0F, 0.0F}, {0.5F, 0.5F},  {0.3F, 0.7F},
                                        {0.7F, 0.3F}, {-1.0F, 2.0F}, {-kInfinity, kInfinity},
                                        {kNan, 0.5F}, {0.5F, kNan},  {0.45F, 0.4500001F}};
    for (const char* type : kTypes)
    {
        for (const auto& [width, height] : kShapes)
            for (const int channels : {1, 3})
                expectExact(noiseOf(type, 3.0F, channels == 1 ? 0.3F : 1.0F, 2.0F), width, height,
                            channels);
        for (const float phase : kPhases)
            expectExact(noiseOf(type, 2.0F, phase, 2.0F));
        for (const float phase : {0.0F, 0.6F})
        {
            for (float levels = 0.5F; levels <= 8.0F; levels += 0.5F)
                expectExact(noiseOf(type, 7.0F, phase, levels));
            for (const float size : kSizes)
                expectExact(noiseOf(type, size, phase, 3.0F));
        }
        for (const auto& [low, high] : kThresholds)
        {
            Noise noise = noiseOf(type, 10.0F, 0.0F, 2.0F);
            noise.thresholdLow = low;
            noise.thresholdHigh = high;
            expectExact(noise, 61, 43, 3);
            expectExact(noise);
        }
    }
    expectExact(noiseOf("noise_fractal", 7.0F, 0.6F, 31.75F));
    expectExact(noiseOf("noise_fractal", 1.0F, 0.0F, 3.0F), 1023, 1025);
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
        EXPECT_EQ(differentFloats(bakeNoiseImage(spec), plainNoise(taken, 40, 30, 1)), 0U)
            << levels;
    }
    // Colours count when both are given.
    OIIO::ImageSpec spec = parameters(noiseOf("Noise_TURBULENCE", 5.0F, 0.0F), 9, 7, 3);
    EXPECT_EQ(bakeNoiseImage(spec).nchannels(), 3);
    spec.erase_attribute("noise:color2");
    EXPECT_EQ(bakeNoiseImage(spec).nchannels(), 1);
}

TEST(NoiseImage, IsTheSameForEveryThreadCountAndSplit)
{
    const Noise noise = noiseOf("noise_fractal", 2.0F, 0.4F, 3.0F);
    const OIIO::ImageSpec spec = parameters(noise, 313, 211, 1);
    const OIIO::ImageBuf expected = plainNoise(noise, 313, 211, 1);
    for (const int threads : {1, 0, 2, 3, 16})
        EXPECT_EQ(differentFloats(bakeNoiseImage(spec, threads), expected), 0U) << threads;
    OIIO::ImageBuf image(expected.spec());
    constexpr int kSplits[] = {0, 1, 64, 65, 130, 131, 210, 211};
    for (std::size_t i = 0; i + 1 < std::size(kSplits); ++i)
        bakeRows(noise, kernels(), kSplits[i], kSplits[i + 1], image);
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
    spec.width = 0;
    EXPECT_TRUE(bakeNoiseImage(spec).has_error());
}
} // namespace vyr::MaterialTranslation::baking
