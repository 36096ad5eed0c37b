#include "baking/NormalImage.h"

#include "baking/BakeError.h"
#include "baking/Bits.h"
#include "baking/ParallelRows.h"
#include "baking/Reference.h"
#include "baking/kernels/Kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace vyr::MaterialTranslation::baking
{
namespace
{
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kLargest = std::numeric_limits<float>::max();

/// What heights are made of; each fault of a kernel shows in some of them.
struct Heights
{
    const char* name;
    std::vector<float> values; ///< picked at random; empty: evenly distributed from 0 to 1
    float every;               ///< share of pixels that are picked from `values`
};

const Heights kHeights[] = {
    {"plain", {}, 0.0F},
    {"zeros of both signs", {0.0F, -0.0F}, 1.0F},
    {"extreme", {kLargest, -kLargest, 1e30F, -1e30F, 0.0F, 1.0F, 1e-30F}, 1.0F},
    {"denormal", {1e-45F, -1e-45F, 1e-40F, -3e-39F, 0.0F, 1.2e-38F}, 1.0F},
    {"some not finite", {kNan, kInfinity, -kInfinity}, 0.02F},
    {"one kind of not finite", {kInfinity}, 0.2F},
};

/// Channels beyond the first are NaN.
OIIO::ImageBuf makeHeights(int width, int height, const Heights& heights, int channels = 1)
{
    OIIO::ImageBuf image(OIIO::ImageSpec(width, height, channels, OIIO::TypeFloat));
    std::mt19937 random(static_cast<unsigned>(width * 7919 + height));
    std::uniform_real_distribution<float> unit(0.0F, 1.0F);
    for (OIIO::ImageBuf::Iterator<float> i(image); !i.done(); ++i)
    {
        const bool odd = unit(random) < heights.every;
        i[0] = odd ? heights.values[random() % heights.values.size()] : unit(random);
        for (int c = 1; c < channels; ++c)
            i[c] = kNan;
    }
    return image;
}

OIIO::ImageSpec parameters(float amount)
{
    OIIO::ImageSpec spec;
    spec.attribute("bump_amount", amount);
    return spec;
}

OIIO::ImageBuf plainNormals(const OIIO::ImageBuf& height, float strengthX, float strengthY)
{
    const OIIO::ImageSpec& spec = height.spec();
    OIIO::ImageBuf image(OIIO::ImageSpec(spec.width, spec.height, 3, OIIO::TypeFloat));
    reference::bakeNormalRows(height, strengthX, strengthY, 0, spec.height, image);
    return image;
}

OIIO::ImageBuf bakeWith(const KernelSet& set, const OIIO::ImageBuf& height,
                        const SlopeStrength& strength)
{
    const int width = height.spec().width;
    const int rows = height.spec().height;
    OIIO::ImageBuf image(OIIO::ImageSpec(width, rows, 3, OIIO::TypeFloat));
    const auto row = [&](int y)
    { return static_cast<const float*>(height.pixeladdr(0, std::clamp(y, 0, rows - 1))); };
    for (int y = 0; y < rows; ++y)
        set.normalRow({row(y - 1), row(y), row(y + 1)}, static_cast<std::size_t>(width), strength,
                      static_cast<float*>(image.pixeladdr(0, y)));
    return image;
}
} // namespace

TEST(NormalKernel, EqualsTheReferenceInEveryBit)
{
    constexpr SlopeStrength kStrengths[] = {
        {1.0F, 1.0F}, {37.5F, -0.02F}, {0.0F, 1e30F}, {kInfinity, 1.0F}};
    std::vector<std::pair<int, int>> sizes{{1, 1},    {1, 7},    {3, 5},   {1023, 1025},
                                           {1, 4096}, {4096, 1}, {640, 33}};
    // Every number of columns up to beyond two vectors has its own mix of border, vector and rest.
    for (int width = 2; width <= 40; ++width)
        sizes.emplace_back(width, 3);
    for (const auto& [width, rows] : sizes)
        for (const Heights& heights : kHeights)
        {
            const OIIO::ImageBuf height = makeHeights(width, rows, heights);
            for (const SlopeStrength& strength : kStrengths)
            {
                const OIIO::ImageBuf expected = plainNormals(height, strength.x, strength.y);
                for (const KernelSet& set : kernelSets())
                    ASSERT_TRUE(sameBits(bakeWith(set, height, strength), expected))
                        << set.name << ", " << width << " x " << rows << ", " << heights.name
                        << ", strength " << strength.x << ", " << strength.y;
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
    const OIIO::ImageBuf slope = bakeNormalImage(ramp, parameters(0.0F));
    const float* inner = static_cast<const float*>(slope.pixeladdr(10, 2));
    EXPECT_NEAR(inner[0], 0.5F - 4.0F / std::sqrt(80.0F), 1e-6F);
    EXPECT_EQ(inner[1], 0.5F);
    EXPECT_NEAR(inner[2], 0.5F + 2.0F / std::sqrt(80.0F), 1e-6F);
    for (const int edge : {0, 19})
        EXPECT_NEAR(slope.getchannel(edge, 0, 0, 0), 0.5F - 2.0F / std::sqrt(32.0F), 1e-6F);
    EXPECT_EQ(slope.spec().get_string_attribute("oiio:ColorSpace"), "Linear");
}

TEST(NormalImage, TakesItsStrengthFromSizeAmountAndScales)
{
    struct Case
    {
        int width;
        float amount;
        float world[2];
        float bump[2];
        float strength[2];
    };
    constexpr Case kCases[] = {
        {8, 0.0F, {2.0F, 3.0F}, {4.0F, 5.0F}, {1.0F, 1.0F}},
        {16, 0.5F, {1.0F, 1.0F}, {1.0F, 1.0F}, {8.0F, 2.0F}},
        {8, -0.25F, {2.0F, 0.5F}, {3.0F, 0.25F}, {-3.0F, -0.5F}},
    };
    for (const auto& [width, amount, world, bump, strength] : kCases)
    {
        const OIIO::ImageBuf height = makeHeights(width, 4, kHeights[0]);
        const OIIO::TypeDesc pair(OIIO::TypeDesc::FLOAT, 2);
        OIIO::ImageSpec spec = parameters(amount);
        spec.attribute("real_world_scale", pair, world);
        spec.attribute("bump_scale", pair, bump);
        const OIIO::ImageBuf expected = plainNormals(height, strength[0], strength[1]);
        EXPECT_TRUE(sameBits(bakeNormalImage(height, spec), expected)) << amount;
    }
}

TEST(NormalImage, IsTheSameForEveryThreadCountAndEnvironment)
{
    const OIIO::ImageBuf height = makeHeights(313, 517, {"", {1e-40F, -2e-39F, 0.5F}, 0.9F});
    const OIIO::ImageBuf expected = plainNormals(height, 313.0F * 0.3F, 517.0F * 0.3F);
    for (const int threads : {1, 0, 2, 3, 16})
        EXPECT_TRUE(sameBits(bakeNormalImage(height, parameters(0.3F), threads), expected))
            << threads;
    const FlushedDenormals flushed;
    EXPECT_TRUE(sameBits(bakeNormalImage(height, parameters(0.3F), 1), expected));
}

TEST(NormalImage, ReadsChannelZeroOfAnyBuffer)
{
    const OIIO::ImageBuf single = makeHeights(37, 41, kHeights[0]);
    OIIO::ImageSpec moved = single.spec();
    moved.x = 5;
    moved.y = -3;
    const OIIO::ImageBuf offset(moved, const_cast<void*>(single.localpixels()));
    const OIIO::ImageBuf expected = plainNormals(single, 1.0F, 1.0F);
    EXPECT_TRUE(sameBits(bakeNormalImage(makeHeights(37, 41, kHeights[0], 3), {}), expected));
    EXPECT_TRUE(sameBits(bakeNormalImage(offset, {}), expected));
    const OIIO::ImageBuf bytes = single.copy(OIIO::TypeUInt8);
    EXPECT_TRUE(sameBits(bakeNormalImage(bytes, {}),
                         plainNormals(bytes.copy(OIIO::TypeFloat), 1.0F, 1.0F)));
    EXPECT_TRUE(bakeNormalImage(OIIO::ImageBuf(), {}).has_error());
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
// Sanitizers end the program instead.
TEST(NormalImage, ThatNoMemoryHoldsIsAnError)
{
    constexpr int kSide = 1 << 21;
    EXPECT_THROW(uninitializedImage("huge", OIIO::ImageSpec(kSide, kSide, 4, OIIO::TypeFloat)),
                 BakeError);
}
#endif
} // namespace vyr::MaterialTranslation::baking
