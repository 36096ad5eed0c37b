#include <array>
#include <cfenv>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "baking/Images.h"
#include "baking/NoiseImage.h"
#include "baking/NormalImage.h"
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

constexpr float largest = std::numeric_limits<float>::max();

/// What heights are made of; each fault of a kernel shows in some of them.
struct Heights
{
    const char* name;
    std::vector<float> values; ///< picked at random; empty: evenly distributed from 0 to 1
    float every;               ///< share of pixels that are picked from `values`
};

const Heights kindsOfHeights[] = {
    {"plain", {}, 0.0f},
    {"zeros of both signs", {0.0f, -0.0f}, 1.0f},
    {"extreme", {largest, -largest, 1e30f, -1e30f, 0.0f, 1.0f, 1e-30f}, 1.0f},
    {"denormal", {1e-45f, -1e-45f, 1e-40f, -3e-39f, 0.0f, 1.2e-38f}, 1.0f},
    {"some not finite", {nan, infinity, -infinity}, 0.02f},
    {"one kind of not finite", {infinity}, 0.2f},
};

/// Channels beyond the first are NaN.
OIIO::ImageBuf makeHeights(int width, int height, const Heights& heights, int channels = 1)
{
    OIIO::ImageBuf image(OIIO::ImageSpec(width, height, channels, OIIO::TypeFloat));
    std::mt19937 random(static_cast<unsigned>(width * 7919 + height));
    std::uniform_real_distribution<float> unit(0.0f, 1.0f);
    for (OIIO::ImageBuf::Iterator<float> i(image); !i.done(); ++i)
    {
        const bool odd = unit(random) < heights.every;
        i[0] = odd ? heights.values[random() % heights.values.size()] : unit(random);
        for (int c = 1; c < channels; ++c)
            i[c] = nan;
    }
    return image;
}

NormalBakeOptions optionsOf(float amount, int threads = 0)
{
    NormalBakeOptions options;
    options.bumpAmount = amount;
    options.threads = threads;
    return options;
}

OIIO::ImageBuf plainNormals(const OIIO::ImageBuf& height, float strengthX, float strengthY)
{
    const OIIO::ImageSpec& spec = height.spec();
    OIIO::ImageBuf image(OIIO::ImageSpec(spec.width, spec.height, 3, OIIO::TypeFloat));
    reference::bakeNormalRows(height, strengthX, strengthY, 0, spec.height, image);
    return image;
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

TEST(NormalKernel, EqualsTheReferenceInEveryBit)
{
    std::vector<std::pair<int, int>> sizes{{1, 1},    {1, 7},    {3, 5},   {1023, 1025},
                                           {1, 4096}, {4096, 1}, {640, 33}};
    // Every number of columns up to beyond two vectors has its own mix of border, vector and rest.
    for (int width = 2; width <= 40; ++width)
        sizes.emplace_back(width, 3);
    for (const auto& [width, rows] : sizes)
        for (const Heights& heights : kindsOfHeights)
        {
            const OIIO::ImageBuf height = makeHeights(width, rows, heights);
            NormalBakeOptions options = optionsOf(1.0f, 1);
            options.realWorldScale = {static_cast<float>(width), static_cast<float>(rows)};
            for (const auto& strength : std::initializer_list<std::array<float, 2>>{
                     {1.0f, 1.0f}, {37.5f, -0.02f}, {0.0f, 1e30f}, {infinity, 1.0f}})
            {
                options.bumpScale = strength;
                const OIIO::ImageBuf expected = plainNormals(height, strength[0], strength[1]);
                for (const KernelSet& set : kernelSets())
                    ASSERT_TRUE(sameBits(bakeNormals(height, options, set), expected))
                        << set.name << ", " << width << " x " << rows << ", " << heights.name
                        << ", strength " << strength[0] << ", " << strength[1];
                if (width * rows > 100000)
                    break;
            }
        }
}

TEST(NormalImage, HasTheKnownValues)
{
    OIIO::ImageBuf ramp(OIIO::ImageSpec(20, 4, 1, OIIO::TypeFloat));
    for (OIIO::ImageBuf::Iterator<float> i(ramp); !i.done(); ++i)
        i[0] = static_cast<float>(i.x());
    const OIIO::ImageBuf slope = bakeNormals(ramp, {});
    const float* inner = static_cast<const float*>(slope.pixeladdr(10, 2));
    EXPECT_NEAR(inner[0], 0.5f - 4.0f / std::sqrt(80.0f), 1e-6f);
    EXPECT_EQ(inner[1], 0.5f);
    EXPECT_NEAR(inner[2], 0.5f + 2.0f / std::sqrt(80.0f), 1e-6f);
    for (const int edge : {0, 19})
        EXPECT_NEAR(slope.getchannel(edge, 0, 0, 0), 0.5f - 2.0f / std::sqrt(32.0f), 1e-6f);
    EXPECT_EQ(slope.spec().get_string_attribute("oiio:ColorSpace"), "Linear");
}

TEST(NormalImage, TakesItsStrengthFromSizeAmountAndScalesAsOptionsOrAttributes)
{
    struct Case
    {
        int width;
        float amount;
        std::array<float, 2> world, bump, strength;
    };
    constexpr Case cases[] = {
        {8, 0.0f, {2.0f, 3.0f}, {4.0f, 5.0f}, {1.0f, 1.0f}},
        {16, 0.5f, {1.0f, 1.0f}, {1.0f, 1.0f}, {8.0f, 2.0f}},
        {8, -0.25f, {2.0f, 0.5f}, {3.0f, 0.25f}, {-3.0f, -0.5f}},
    };
    const OIIO::TypeDesc pair(OIIO::TypeDesc::FLOAT, 2);
    OIIO::ImageSpec spec;
    for (const auto& [width, amount, world, bump, strength] : cases)
    {
        const OIIO::ImageBuf height = makeHeights(width, 4, kindsOfHeights[0]);
        const OIIO::ImageBuf expected = plainNormals(height, strength[0], strength[1]);
        NormalBakeOptions options = optionsOf(amount);
        options.realWorldScale = world;
        options.bumpScale = bump;
        EXPECT_TRUE(sameBits(bakeNormals(height, options), expected)) << amount;
        spec.attribute("bump_amount", amount);
        spec.attribute("real_world_scale", pair, world.data());
        spec.attribute("bump_scale", pair, bump.data());
        EXPECT_TRUE(sameBits(bakeNormalImage(height, spec), expected)) << amount;
    }
    // Scales of another type count as absent.
    const OIIO::ImageBuf height = makeHeights(8, 4, kindsOfHeights[0]);
    spec.attribute("bump_scale", "2, 2");
    const OIIO::ImageBuf image = bakeNormalImage(height, spec);
    EXPECT_TRUE(sameBits(image, plainNormals(height, -1.0f, -2.0f)));
    EXPECT_EQ(image.name(), "normal_image");
}

TEST(NormalImage, IsTheSameForEveryThreadCountAndEnvironment)
{
    const OIIO::ImageBuf height = makeHeights(313, 517, {"", {1e-40f, -2e-39f, 0.5f}, 0.9f});
    const OIIO::ImageBuf expected = plainNormals(height, 313.0f * 0.3f, 517.0f * 0.3f);
    for (const int threads : {1, 0, 2, 3, 16})
        EXPECT_TRUE(sameBits(bakeNormals(height, optionsOf(0.3f, threads)), expected)) << threads;
    // A host may round as it likes.
    std::fesetround(FE_UPWARD);
    const OIIO::ImageBuf upward = bakeNormals(height, optionsOf(0.3f, 1));
    EXPECT_EQ(std::fegetround(), FE_UPWARD);
    std::fesetround(FE_TONEAREST);
    EXPECT_TRUE(sameBits(upward, expected));
}

TEST(NormalImage, ReadsChannelZeroOfAnyBuffer)
{
    const OIIO::ImageBuf single = makeHeights(37, 41, kindsOfHeights[0]);
    OIIO::ImageSpec moved = single.spec();
    moved.x = 5;
    moved.y = -3;
    const OIIO::ImageBuf offset(moved, const_cast<void*>(single.localpixels()));
    const OIIO::ImageBuf expected = plainNormals(single, 1.0f, 1.0f);
    EXPECT_TRUE(sameBits(bakeNormals(makeHeights(37, 41, kindsOfHeights[0], 3), {}), expected));
    EXPECT_TRUE(sameBits(bakeNormals(offset, {}), expected));
    const OIIO::ImageBuf bytes = single.copy(OIIO::TypeUInt8);
    EXPECT_TRUE(
        sameBits(bakeNormals(bytes, {}), plainNormals(bytes.copy(OIIO::TypeFloat), 1.0f, 1.0f)));
    EXPECT_TRUE(bakeNormals(OIIO::ImageBuf(), {}).has_error());
}

} // namespace vyr::MaterialTranslation::baking
