#include "baking/NormalImage.h"

#include <array>
#include <cfenv>
#include <vector>

#include <gtest/gtest.h>

#include "baking/Images.h"
#include "baking/Reference.h"

namespace vyr::MaterialTranslation::baking
{

namespace
{

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
