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

/// Channels differ by more than lossy formats lose.
OIIO::ImageBuf picture(int channels)
{
    std::mt19937 random(11);
    OIIO::ImageBuf image(OIIO::ImageSpec(40, 30, channels, OIIO::TypeFloat));
    for (OIIO::ImageBuf::Iterator<float> i(image); !i.done(); ++i)
        for (int c = 0; c < channels; ++c)
            i[c] = (60.0F + 50.0F * static_cast<float>(c) + static_cast<float>(random() % 16)) /
                   255.0F;
    return image;
}

std::string encoded(const Format& format)
{
    const OIIO::ImageBuf image = picture(format.channels);
    OIIO::ImageSpec spec = image.spec();
    spec.set_format(format.type);
    spec.attribute("oiio:UnassociatedAlpha", 1);
    spec.attribute("pnm:pfmflip", 0); // or bytes come out upside down
    const auto bytes =
        encodeImage("image" + format.extension, spec, OIIO::TypeFloat, image.localpixels());
    return {bytes.begin(), bytes.end()};
}

/// Bakes a file of given bytes in an empty folder; after a failure nothing may be left.
BakeResult baked(const std::string& name, const std::string& bytes)
{
    static const support::TemporaryFolder folder;
    const auto source = folder.write(name, bytes);
    const auto destination = folder / "normals.png";
    NormalBakeOptions options;
    options.threads = 1;
    options.limits.pixels = 1 << 16;
    ::testing::internal::CaptureStderr();
    const BakeResult result = bakeNormalMapFile(source, destination, options);
    ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(result.message.empty(), result.success);
    EXPECT_EQ(result.message.find('\n'), std::string::npos) << result.message;
    std::filesystem::remove(source);
    EXPECT_EQ(std::filesystem::remove(destination), result.success);
    EXPECT_TRUE(folder.entries().empty());
    return result;
}

} // namespace

TEST(HeightImage, OfEachFormatIsItsFirstChannel)
{
    const support::TemporaryFolder folder;
    for (const Format& format : kFormats)
    {
        // What a file is says its content, but for targa, which has no mark.
        const std::string extension = format.extension == ".tga" ? ".TGA" : ".txt";
        const auto path = folder.write("height" + extension, encoded(format));
        const OIIO::ImageBuf heights = readHeightImage(path, {}).heights;
        ASSERT_EQ(heights.nchannels(), 1) << format.extension;
        const OIIO::ImageBuf expected = picture(format.channels);
        const bool lossy = format.extension == ".jpg" || format.extension == ".webp";
        for (OIIO::ImageBuf::ConstIterator<float> i(expected); !i.done(); ++i)
            ASSERT_NEAR(heights.getchannel(i.x(), i.y(), 0, 0), i[0], lossy ? 0.08 : 0.005)
                << format.extension << ' ' << i.x() << ' ' << i.y();
    }
}

TEST(HeightImage, CutIsRefusedAndDamagedIsRefusedOrBaked)
{
    std::mt19937 random(3);
    for (const Format& format : kFormats)
    {
        const std::string name = "image" + format.extension;
        const std::string whole = encoded(format);
        ASSERT_TRUE(baked(name, whole).success) << name;
        constexpr std::size_t kCuts = 200;
        for (std::size_t i = 0; i < kCuts; ++i)
        {
            const bool needed = static_cast<double>(i) / kCuts < format.needed;
            const bool good = baked(name, whole.substr(0, whole.size() * i / kCuts)).success;
            ASSERT_FALSE(good && needed) << name << ' ' << i;
            std::string damaged = whole;
            // Headers are short, and matter more than pixels.
            const std::size_t end =
                i % 2 == 0 ? whole.size() : std::min<std::size_t>(whole.size(), 96);
            for (unsigned flips = random() % 4 + 1; flips > 0; --flips)
                damaged[random() % end] ^= static_cast<char>(random() % 255 + 1);
            baked(name, damaged);
            ASSERT_FALSE(::testing::Test::HasFailure()) << name << ' ' << i;
        }
    }
}

TEST(HeightImage, OfAnUnwantedKindIsRefusedWithTheReason)
{
    const std::string hugePng(
        "\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\1\0\0\0\1\0\0\x8\0\0\0\0\x3B\x27\x2B\xDF", 33);
    const std::string cases[][3] = {
        {"empty.png", "", "empty"},
        {"text.png", "no picture at all", "not a png"},
        {"picture.null?RES=64x64", "null", "not a png"},
        {"animation.gif", "GIF89a\x10\0\x10\0", "not a png"},
        {"huge.ppm", "P5 60000 60000 255\n", "limit of 65536"},
        {"huge.hdr", "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 30000 +X 30000\n", "limit of 65536"},
        {"huge.png", hugePng, ""},
    };
    for (const auto& [name, bytes, reason] : cases)
    {
        const std::string message = baked(name, bytes).message;
        EXPECT_NE(message.find(name), std::string::npos) << message;
        EXPECT_NE(message.find(reason), std::string::npos) << message;
    }
    const support::TemporaryFolder folder;
    for (const auto& path : {folder.path(), folder / "missing.png"})
        EXPECT_THROW(readHeightImage(path, {}), BakeError) << path;
    ImageLimits limits;
    limits.channels = 3;
    const auto four = folder.write("four.png", encoded(kFormats[0]));
    EXPECT_THROW(readHeightImage(four, limits), BakeError);
}

TEST(WriteImage, KeepsFloatsWhereTheFormatHasThemAndRoundsAsTheImageLibraryDoes)
{
    const support::TemporaryFolder folder;
    OIIO::ImageBuf image = picture(3);
    const OIIO::ImageBuf first = OIIO::ImageBufAlgo::channels(image, 1, {});
    const std::string names[] = {"a.exr", "a.TIFF", "a.pfm", "a.png",
                                 "a.tga", "a.bmp",  "a.hdr", "a.sgi"};
    for (const std::string& name : names)
        writeImage(image, folder / name);
    for (const std::string& name : {names[0], names[1], names[2]})
        EXPECT_TRUE(sameBits(readHeightImage(folder / name, {}).heights, first)) << name;
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
    const auto read = [&](const char* name)
    {
        OIIO::ImageBuf file(support::TemporaryFolder::utf8(folder / name));
        EXPECT_EQ(file.nativespec().format, OIIO::TypeUInt8);
        file.read(0, 0, true, OIIO::TypeFloat);
        return file;
    };
    EXPECT_TRUE(sameBits(read("ours.png"), read("theirs.png")));
}

TEST(WriteImage, RefusesWhatItCannotWriteSafely)
{
    const support::TemporaryFolder folder;
    const OIIO::ImageBuf image = picture(1);
    for (const char* name :
         {"a.JPEG", "a.jfif", "a.null", "a.txt", "png", "a.hdr", "a.ppm", "missing/a.png"})
        EXPECT_THROW(writeImage(image, folder / name), BakeError) << name;
    EXPECT_TRUE(folder.entries().empty());
}
} // namespace vyr::MaterialTranslation::baking
