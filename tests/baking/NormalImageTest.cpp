#include "baking/NormalImage.h"

#include "baking/Bits.h"
#include "baking/ParallelRows.h"
#include "baking/Reference.h"
#include "baking/kernels/KernelSetOf.h"
#include "baking/kernels/LanesPortable.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace vyr::MaterialTranslation::baking
{
namespace
{
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

struct Size
{
    int width;
    int height;
};

/// Every number of columns up to beyond two vectors has its own mix of border, vector and rest.
std::vector<Size> awkwardSizes()
{
    std::vector<Size> sizes{{1, 1},       {1, 7},    {7, 1},    {3, 5},
                            {1023, 1025}, {1, 4096}, {4096, 1}, {640, 33}};
    for (int width = 2; width <= 40; ++width)
    {
        sizes.push_back({width, 3});
    }
    return sizes;
}

/// What heights are made of; each fault of a kernel shows in some of them.
struct Heights
{
    const char* name;
    std::vector<float> values; ///< picked at random; empty: evenly distributed from 0 to 1
    float every;               ///< share of pixels that are picked from `values`
};

const std::vector<Heights>& awkwardHeights()
{
    constexpr float kDenormal = std::numeric_limits<float>::denorm_min();
    constexpr float kLargest = std::numeric_limits<float>::max();
    static const std::vector<Heights> heights{
        {"plain", {}, 0.0F},
        {"zeros of both signs", {0.0F, -0.0F}, 1.0F},
        {"extreme", {kLargest, -kLargest, 1e30F, -1e30F, 0.0F, 1.0F, 1e-30F}, 1.0F},
        {"denormal", {kDenormal, -kDenormal, 1e-40F, -3e-39F, 0.0F, 1.2e-38F}, 1.0F},
        {"some not finite", {kNan, kInfinity, -kInfinity}, 0.02F},
        {"one kind of not finite", {kInfinity}, 0.2F},
    };
    return heights;
}

OIIO::ImageBuf makeHeights(Size size, const Heights& heights, int channels = 1)
{
    OIIO::ImageBuf image(OIIO::ImageSpec(size.width, size.height, channels, OIIO::TypeFloat));
    std::mt19937 random(static_cast<unsigned>(size.width * 7919 + size.height));
    std::uniform_real_distribution<float> unit(0.0F, 1.0F);
    auto* pixel = static_cast<float*>(image.localpixels());
    for (OIIO::imagesize_t i = 0; i < image.spec().image_pixels(); ++i, pixel += channels)
    {
        const bool odd = unit(random) < heights.every;
        pixel[0] = odd ? heights.values[random() % heights.values.size()] : unit(random);
        for (int c = 1; c < channels; ++c)
        {
            pixel[c] = kNan;
        }
    }
    return image;
}

OIIO::ImageSpec parameters(float amount, float worldX = 1.0F, float worldY = 1.0F)
{
    OIIO::ImageSpec spec;
    spec.attribute("bump_amount", amount);
    const float world[2] = {worldX, worldY};
    spec.attribute("real_world_scale", OIIO::TypeDesc(OIIO::TypeDesc::FLOAT, 2), world);
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
    {
        set.normalRow({row(y - 1), row(y), row(y + 1)}, static_cast<std::size_t>(width), strength,
                      static_cast<float*>(image.pixeladdr(0, y)));
    }
    return image;
}

std::vector<float> pixel(const OIIO::ImageBuf& image, int x, int y)
{
    std::vector<float> values(3);
    image.getpixel(x, y, values);
    return values;
}

OIIO::ImageBuf ramp(int width, int height)
{
    OIIO::ImageBuf image(OIIO::ImageSpec(width, height, 1, OIIO::TypeFloat));
    for (OIIO::ImageBuf::Iterator<float> i(image); !i.done(); ++i)
    {
        i[0] = static_cast<float>(i.x());
    }
    return image;
}
} // namespace

TEST(NormalKernel, EqualsTheReferenceInEveryBit)
{
    constexpr SlopeStrength kStrengths[] = {
        {1.0F, 1.0F}, {37.5F, -0.02F}, {0.0F, 1e30F}, {kInfinity, 1.0F}};
    for (const Size& size : awkwardSizes())
    {
        for (const Heights& heights : awkwardHeights())
        {
            const OIIO::ImageBuf height = makeHeights(size, heights);
            const bool large = size.width * size.height > 100000;
            for (const SlopeStrength& strength : kStrengths)
            {
                const OIIO::ImageBuf expected = plainNormals(height, strength.x, strength.y);
                for (const KernelSet& set : kernelSets())
                {
                    const OIIO::ImageBuf image = bakeWith(set, height, strength);
                    ASSERT_EQ(differentFloats(image, expected), 0U)
                        << set.name << ", " << size.width << " x " << size.height << ", "
                        << heights.name << ", strength " << strength.x << ", " << strength.y;
                }
                if (large)
                {
                    break;
                }
            }
        }
    }
}

TEST(NormalKernel, LengthIsRoundedAsByTheStandardLibraryItWasTakenFrom)
{
#if defined(__GLIBCXX__)
    std::mt19937 random(5);
    for (int i = 0; i < 200000; ++i)
    {
        float c[3];
        for (float& component : c)
        {
            const std::uint32_t bits = static_cast<std::uint32_t>(random());
            std::memcpy(&component, &bits, sizeof bits);
        }
        const float expected = std::hypot(c[0], c[1], c[2]);
        ASSERT_TRUE(sameBits(reference::hypot3(c[0], c[1], c[2]), expected))
            << c[0] << ' ' << c[1] << ' ' << c[2];
        if (c[2] != 0.0F)
        {
            const float length = length3<PortableLanes>({c[0]}, {c[1]}, {c[2]}).v;
            ASSERT_TRUE(sameBits(length, expected)) << c[0] << ' ' << c[1] << ' ' << c[2];
        }
    }
#else
    GTEST_SKIP() << "another standard library";
#endif
}

TEST(NormalImage, HasTheKnownValues)
{
    const OIIO::ImageBuf flat =
        bakeNormalImage(makeHeights({64, 9}, {"", {0.3F}, 1.0F}), parameters(0.0F));
    for (const int x : {0, 1, 31, 63})
    {
        EXPECT_EQ(pixel(flat, x, x % 9), (std::vector<float>{0.5F, 0.5F, 1.0F}));
    }
    EXPECT_EQ(flat.name(), "normal_image");
    EXPECT_EQ(flat.spec().get_string_attribute("oiio:ColorSpace"), "Linear");

    const OIIO::ImageBuf slope = bakeNormalImage(ramp(20, 4), parameters(0.0F));
    const float inner = std::sqrt(80.0F);
    EXPECT_NEAR(pixel(slope, 10, 2)[0], 0.5F - 4.0F / inner, 1e-6F);
    EXPECT_EQ(pixel(slope, 10, 2)[1], 0.5F);
    EXPECT_NEAR(pixel(slope, 10, 2)[2], 0.5F + 2.0F / inner, 1e-6F);
    for (const int edge : {0, 19})
    {
        EXPECT_NEAR(pixel(slope, edge, 0)[0], 0.5F - 2.0F / std::sqrt(32.0F), 1e-6F) << edge;
    }
}

TEST(NormalImage, TakesItsStrengthFromSizeAmountAndScales)
{
    struct Case
    {
        Size size;
        float amount;
        float world[2];
        float bump[2];
        float strength[2];
    };
    constexpr Case kCases[] = {
        {{8, 4}, 0.0F, {2.0F, 3.0F}, {4.0F, 5.0F}, {1.0F, 1.0F}},
        {{8, 4}, 0.5F, {1.0F, 1.0F}, {1.0F, 1.0F}, {4.0F, 2.0F}},
        {{16, 4}, 0.5F, {1.0F, 1.0F}, {1.0F, 1.0F}, {8.0F, 2.0F}},
        {{8, 4}, -0.25F, {2.0F, 0.5F}, {3.0F, 0.25F}, {-3.0F, -0.5F}},
        {{7, 3},
         0.1F,
         {3.0F, 7.0F},
         {1.1F, 1.3F},
         {7.0F * 0.1F / 3.0F * 1.1F, 3.0F * 0.1F / 7.0F * 1.3F}},
    };
    for (const Case& c : kCases)
    {
        const OIIO::ImageBuf height = makeHeights(c.size, awkwardHeights().front());
        OIIO::ImageSpec spec = parameters(c.amount, c.world[0], c.world[1]);
        spec.attribute("bump_scale", OIIO::TypeDesc(OIIO::TypeDesc::FLOAT, 2), c.bump);
        spec.attribute("texture_RealWorldScaleX", 11.0F);
        const OIIO::ImageBuf expected = plainNormals(height, c.strength[0], c.strength[1]);
        EXPECT_EQ(differentFloats(bakeNormalImage(height, spec), expected), 0U) << c.amount;
    }
}

TEST(NormalImage, IsTheSameForEveryThreadCountAndEnvironment)
{
    const OIIO::ImageBuf height = makeHeights({313, 517}, {"", {1e-40F, -2e-39F, 0.5F}, 0.9F});
    const OIIO::ImageBuf expected = plainNormals(height, 313.0F * 0.3F, 517.0F * 0.3F);
    for (const int threads : {1, 0, 2, 3, 16})
    {
        EXPECT_EQ(differentFloats(bakeNormalImage(height, parameters(0.3F), threads), expected), 0U)
            << threads;
    }
    const FlushedDenormals flushed;
    EXPECT_EQ(differentFloats(bakeNormalImage(height, parameters(0.3F), 1), expected), 0U);
}

TEST(NormalImage, ReadsChannelZeroOfAnyBuffer)
{
    const Heights& plain = awkwardHeights().front();
    const OIIO::ImageBuf expected = plainNormals(makeHeights({37, 41}, plain), 1.0F, 1.0F);
    const OIIO::ImageBuf colour = makeHeights({37, 41}, plain, 3);
    EXPECT_EQ(differentFloats(bakeNormalImage(colour, {}), expected), 0U);

    OIIO::ImageSpec moved(37, 41, 1, OIIO::TypeFloat);
    moved.x = 5;
    moved.y = -3;
    const OIIO::ImageBuf single = makeHeights({37, 41}, plain);
    OIIO::ImageBuf offset(moved);
    offset.set_pixels(offset.roi(), OIIO::TypeFloat, single.localpixels());
    EXPECT_EQ(differentFloats(bakeNormalImage(offset, {}), expected), 0U);

    const OIIO::ImageBuf bytes = single.copy(OIIO::TypeUInt8);
    EXPECT_EQ(differentFloats(bakeNormalImage(bytes, {}),
                              plainNormals(bytes.copy(OIIO::TypeFloat), 1.0F, 1.0F)),
              0U);
}

TEST(NormalImage, OfNothingIsAnError)
{
    OIIO::ImageBuf image = bakeNormalImage(OIIO::ImageBuf(), {});
    EXPECT_FALSE(image.initialized());
    EXPECT_FALSE(image.geterror().empty());
}
} // namespace vyr::MaterialTranslation::baking
