#include "baking/ImageFile.h"
#include "baking/BakeError.h"
#include "baking/Bits.h"
#include "baking/HeightImage.h"
#include "support/TemporaryFolder.h"

#include <MaterialTranslation/Bakes.h>
#include <MaterialTranslation/Export.h>

#include <OpenImageIO/imagebufalgo.h>
#include <OpenImageIO/imageio.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <random>
#include <string>
#include <thread>
#include <vector>

/// Readers of the image library lose a few bytes over damaged files; that is not for us to mend.
extern "C" VYR_MTLX_API const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libOpenImageIO";
}

namespace vyr::MaterialTranslation::baking
{
namespace
{
using Bytes = std::vector<unsigned char>;

struct Format
{
    std::string extension;
    OIIO::TypeDesc type;
    int channels;
    double needed; ///< share of the file that holds pixels; the rest may be cut off
};

const Format kFormats[] = {
    {".png", OIIO::TypeUInt8, 4, 1.0},  {".jpg", OIIO::TypeUInt8, 3, 1.0},
    {".tif", OIIO::TypeFloat, 1, 1.0},  {".exr", OIIO::TypeHalf, 3, 1.0},
    {".tga", OIIO::TypeUInt8, 4, 0.9},  {".bmp", OIIO::TypeUInt8, 3, 1.0},
    {".hdr", OIIO::TypeFloat, 3, 1.0},  {".webp", OIIO::TypeUInt8, 4, 1.0},
    {".sgi", OIIO::TypeUInt16, 1, 1.0}, {".ppm", OIIO::TypeUInt8, 3, 1.0},
};

constexpr int kWidth = 40;
constexpr int kHeight = 30;

std::vector<float> picture(int channels)
{
    std::mt19937 random(11);
    std::vector<float> values(static_cast<std::size_t>(kWidth * kHeight * channels));
    for (std::size_t i = 0; i < values.size(); ++i)
    {
        // Channels differ by more than lossy formats lose.
        const std::size_t channel = i % static_cast<std::size_t>(channels);
        values[i] = static_cast<float>(60 + 50 * channel + random() % 16) / 255.0F;
    }
    return values;
}

Bytes encoded(const Format& format)
{
    OIIO::ImageSpec spec(kWidth, kHeight, format.channels, format.type);
    spec.attribute("oiio:UnassociatedAlpha", 1);
    spec.attribute("pnm:pfmflip", 0); // or bytes come out upside down
    return encodeImage("image" + format.extension, spec, OIIO::TypeFloat,
                       picture(format.channels).data());
}

std::string textOf(const Bytes& bytes)
{
    return std::string(bytes.begin(), bytes.end());
}

/// Bakes files of given bytes; after a failure nothing may be left.
class Road
{
  public:
    Road()
    {
        std::filesystem::create_directory(_folder / "out");
        ::testing::internal::CaptureStderr();
    }
    ~Road() { ::testing::internal::GetCapturedStderr(); }
    Road(const Road&) = delete;
    Road& operator=(const Road&) = delete;

    /// \return whether there is a normal map.
    bool bake(const std::string& name, const Bytes& bytes)
    {
        const auto source = _folder.write(name, textOf(bytes));
        const auto destination = _folder / "out" / "normals.png";
        std::filesystem::remove(destination);
        NormalBakeOptions options;
        options.threads = 1;
        options.limits.pixels = 1 << 16;
        _last = bakeNormalMapFile(source, destination, options);
        const bool exists = std::filesystem::exists(destination);
        EXPECT_EQ(exists, _last.success);
        EXPECT_EQ(_last.message.empty(), _last.success);
        EXPECT_EQ(_last.message.find('\n'), std::string::npos) << _last.message;
        EXPECT_EQ(_folder.entries().size(), exists ? 3U : 2U);
        std::filesystem::remove(source);
        return exists;
    }

    const std::string& message() const { return _last.message; }

  private:
    support::TemporaryFolder _folder;
    BakeResult _last;
};

OIIO::ImageBuf floatImage(int channels)
{
    OIIO::ImageBuf image(OIIO::ImageSpec(kWidth, kHeight, channels, OIIO::TypeFloat));
    image.set_pixels(image.roi(), OIIO::TypeFloat, picture(channels).data());
    return image;
}
} // namespace

TEST(HeightImage, OfEachFormatIsItsFirstChannel)
{
    const support::TemporaryFolder folder;
    for (const Format& format : kFormats)
    {
        const Bytes bytes = encoded(format);
        // What a file is says its content, but for targa, which has no mark.
        const std::string extension = format.extension == ".tga" ? ".TGA" : ".txt";
        const auto path = folder.write("height" + extension, textOf(bytes));
        const OIIO::ImageBuf heights = readHeightImage(path, {}).heights;
        ASSERT_EQ(heights.nchannels(), 1) << format.extension;
        const std::vector<float> expected = picture(format.channels);
        const bool lossy = format.extension == ".jpg" || format.extension == ".webp";
        for (int i = 0; i < kWidth * kHeight; ++i)
        {
            const float value = heights.getchannel(i % kWidth, i / kWidth, 0, 0);
            const auto first = static_cast<std::size_t>(i * format.channels);
            ASSERT_NEAR(value, expected[first], lossy ? 0.08 : 0.005)
                << format.extension << ' ' << i;
        }
    }
}

TEST(HeightImage, CutIsRefusedAndDamagedIsRefusedOrBaked)
{
    Road road;
    std::mt19937 random(3);
    for (const Format& format : kFormats)
    {
        const std::string name = "image" + format.extension;
        const Bytes whole = encoded(format);
        ASSERT_TRUE(road.bake(name, whole)) << road.message();
        constexpr std::size_t kCuts = 200;
        for (std::size_t i = 0; i < kCuts; ++i)
        {
            Bytes cut = whole;
            cut.resize(whole.size() * i / kCuts);
            const double share = static_cast<double>(i) / kCuts;
            ASSERT_TRUE(!road.bake(name, cut) || share >= format.needed) << name << ' ' << i;
            Bytes damaged = whole;
            // Headers are short, and matter more than pixels.
            const std::size_t end =
                i % 2 == 0 ? whole.size() : std::min<std::size_t>(whole.size(), 96);
            for (unsigned flips = random() % 4 + 1; flips > 0; --flips)
                damaged[random() % end] ^= static_cast<unsigned char>(random() % 255 + 1);
            road.bake(name, damaged);
            ASSERT_FALSE(::testing::Test::HasFailure()) << name << ' ' << i;
        }
    }
}

TEST(HeightImage, OfAnUnwantedKindIsRefusedWithTheReason)
{
    struct Case
    {
        const char* name;
        std::string bytes;
        const char* reason;
    };
    const std::string png("\x89PNG\r\n\x1A\n\0\0\0\rIHDR", 16);
    const std::string hugePng =
        png + std::string("\0\1\0\0\0\1\0\0\x8\0\0\0\0\x3B\x27\x2B\xDF", 17);
    const Case cases[] = {
        {"empty.png", "", "empty"},
        {"text.png", "no picture at all", "not a png"},
        {"picture.null?RES=64x64", "null", "not a png"},
        {"animation.gif", "GIF89a\x10\0\x10\0", "not a png"},
        {"huge.ppm", "P5 60000 60000 255\n", "limit of 65536"},
        {"huge.hdr", "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 30000 +X 30000\n", "limit of 65536"},
        {"huge.png", hugePng, ""},
    };
    Road road;
    for (const Case& c : cases)
    {
        EXPECT_FALSE(road.bake(c.name, Bytes(c.bytes.begin(), c.bytes.end()))) << c.name;
        EXPECT_NE(road.message().find(c.reason), std::string::npos) << road.message();
        EXPECT_NE(road.message().find(c.name), std::string::npos) << road.message();
    }
    const support::TemporaryFolder folder;
    for (const auto& path : {folder.path(), folder / "missing.png", folder / "missing.null"})
        EXPECT_THROW(readHeightImage(path, {}), BakeError) << path;
    ImageLimits limits;
    limits.channels = 3;
    const auto four = folder.write("four.png", textOf(encoded(kFormats[0])));
    EXPECT_THROW(readHeightImage(four, limits), BakeError);
}

TEST(WriteImage, KeepsFloatsWhereTheFormatHasThemAndRoundsAsTheImageLibraryDoes)
{
    const support::TemporaryFolder folder;
    OIIO::ImageBuf image = floatImage(3);
    const OIIO::ImageBuf first = OIIO::ImageBufAlgo::channels(image, 1, {});
    const std::string names[] = {"a.exr", "a.TIFF", "a.pfm", "a.png",
                                 "a.tga", "a.bmp",  "a.hdr", "a.sgi"};
    for (const std::string& name : names)
        writeImage(image, folder / name);
    for (const std::string& name : {names[0], names[1], names[2]})
        EXPECT_EQ(differentFloats(readHeightImage(folder / name, {}).heights, first), 0U) << name;
    // No file tells when it was written.
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    for (const std::string& name : names)
    {
        writeImage(image, folder / ("b" + name), 1);
        EXPECT_EQ(support::readFile(folder / name), support::readFile(folder / ("b" + name)));
    }
    const std::vector<float> odd{0.5F, -1.0F, 2.0F, 1.0F / 510.0F, 0.25F};
    image.set_pixels(OIIO::ROI(0, 5, 0, 1, 0, 1, 0, 1), OIIO::TypeFloat, odd.data());
    writeImage(image, folder / "ours.png");
    ASSERT_TRUE(image.write(support::TemporaryFolder::utf8(folder / "theirs.png")));
    OIIO::ImageBuf a(support::TemporaryFolder::utf8(folder / "ours.png"));
    OIIO::ImageBuf b(support::TemporaryFolder::utf8(folder / "theirs.png"));
    a.read(0, 0, true, OIIO::TypeFloat);
    b.read(0, 0, true, OIIO::TypeFloat);
    EXPECT_EQ(differentFloats(a, b), 0U);
    EXPECT_EQ(a.nativespec().format, OIIO::TypeUInt8);
}

TEST(WriteImage, RefusesWhatItCannotWriteSafely)
{
    const support::TemporaryFolder folder;
    const OIIO::ImageBuf image = floatImage(1);
    for (const char* name : {"a.JPEG", "a.jfif", "a.null", "a.term", "a.txt", "png", "a.hdr",
                             "a.ppm", "missing/a.png"})
    {
        EXPECT_THROW(writeImage(image, folder / name), BakeError) << name;
    }
    EXPECT_TRUE(folder.entries().empty());
}
} // namespace vyr::MaterialTranslation::baking
