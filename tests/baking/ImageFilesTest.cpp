#include <chrono>
#include <cmath>
#include <thread>

#include <OpenImageIO/imagebufalgo.h>
#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include <MaterialTranslation/Export.h>

#include "bakes/BakeLibrary.h"
#include "baking/ImageFile.h"
#include "baking/Images.h"
#include "baking/NoiseImage.h"
#include "baking/NormalImage.h"
#include "support/TemporaryFolder.h"

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

using bakes::BakeOutcome;
using bakes::BumpBake;
using bakes::NoiseBumpBake;
using support::readFile;
using support::TemporaryFolder;

const bakes::BakeLibrary& library = *vyrMtlxBakeLibrary();

struct Format
{
    std::string extension;
    OIIO::TypeDesc type;
    int channels;
    double needed; ///< share of the file that holds pixels; the rest may be cut off
};

const Format formats[] = {
    {".png", OIIO::TypeUInt8, 4, 1.0},  {".jpg", OIIO::TypeUInt8, 3, 1.0},
    {".tif", OIIO::TypeFloat, 1, 1.0},  {".exr", OIIO::TypeHalf, 3, 1.0},
    {".tga", OIIO::TypeUInt8, 4, 0.9},  {".bmp", OIIO::TypeUInt8, 3, 1.0},
    {".hdr", OIIO::TypeFloat, 3, 1.0},  {".webp", OIIO::TypeUInt8, 4, 1.0},
    {".sgi", OIIO::TypeUInt16, 1, 1.0}, {".ppm", OIIO::TypeUInt8, 3, 1.0},
};

std::string encoded(const Format& format)
{
    const OIIO::ImageBuf image = picture(40, 30, format.channels);
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
    static const TemporaryFolder folder;
    const auto source = folder.write(name, bytes);
    const auto destination = folder / "normals.png";
    NormalBakeOptions options;
    options.threads = 1;
    options.limits.pixels = 1 << 16;
    ::testing::internal::CaptureStderr();
    const BakeResult result = library.bakeNormalMapFile(source, destination, options);
    ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(result.message.empty(), result.success);
    EXPECT_EQ(result.message.find('\n'), std::string::npos) << result.message;
    std::filesystem::remove(source);
    EXPECT_EQ(std::filesystem::remove(destination), result.success);
    EXPECT_TRUE(folder.entries().empty());
    return result;
}

NoiseBakeOptions noiseOptions(int size)
{
    NoiseBakeOptions options;
    options.width = options.height = size;
    options.type = "noise_fractal";
    options.size = 10.0f;
    options.levels = 40.0f;
    options.thresholdLow = 0.1f;
    options.thresholdHigh = 0.9f;
    return options;
}

OIIO::ImageBuf read(const std::filesystem::path& path)
{
    OIIO::ImageBuf image(TemporaryFolder::utf8(path));
    image.read(0, 0, true, OIIO::TypeFloat);
    return image;
}

} // namespace

TEST(HeightImage, OfEachFormatIsItsFirstChannel)
{
    const TemporaryFolder folder;
    for (const Format& format : formats)
    {
        // What a file is says its content, but for targa, which has no mark.
        const std::string extension = format.extension == ".tga" ? ".TGA" : ".txt";
        const auto path = folder.write("height" + extension, encoded(format));
        const OIIO::ImageBuf heights = readHeightImage(path, {}).heights;
        ASSERT_EQ(heights.nchannels(), 1) << format.extension;
        const OIIO::ImageBuf all = picture(40, 30, format.channels);
        const OIIO::ImageBuf first = OIIO::ImageBufAlgo::channels(all, 1, {});
        const bool lossy = format.extension == ".jpg" || format.extension == ".webp";
        EXPECT_LE(OIIO::ImageBufAlgo::compare(heights, first, 1, 1).maxerror, lossy ? 0.08 : 0.005)
            << format.extension;
    }
}

TEST(HeightImage, CutIsRefusedAndDamagedIsRefusedOrBaked)
{
    std::mt19937 random(3);
    for (const Format& format : formats)
    {
        const std::string name = "image" + format.extension;
        const std::string whole = encoded(format);
        ASSERT_TRUE(baked(name, whole).success) << name;
        constexpr std::size_t cuts = 200;
        for (std::size_t i = 0; i < cuts; ++i)
        {
            const bool needed = static_cast<double>(i) / cuts < format.needed;
            const bool good = baked(name, whole.substr(0, whole.size() * i / cuts)).success;
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
    const TemporaryFolder folder;
    EXPECT_THROW(readHeightImage(folder.path(), {}), BakeError);
    const auto four = folder.write("four.png", encoded(formats[0]));
    EXPECT_NO_THROW(readHeightImage(four, {40 * 30, 4}));
    EXPECT_THROW(readHeightImage(four, {40 * 30, 3}), BakeError);
}

TEST(WriteImage, KeepsFloatsWhereTheFormatHasThemAndRoundsAsTheImageLibraryDoes)
{
    const TemporaryFolder folder;
    OIIO::ImageBuf image = picture(40, 30, 3);
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
        EXPECT_EQ(readFile(folder / name), readFile(folder / ("b" + name)));
    }
    const float odd[] = {0.5f, -1.0f, 2.0f, 1.0f / 510.0f, 0.25f};
    image.set_pixels(OIIO::ROI(0, 5, 0, 1, 0, 1, 0, 1), OIIO::TypeFloat, odd);
    writeImage(image, folder / "odd.png");
    const OIIO::ImageBuf odds = readHeightImage(folder / "odd.png", {}).heights;
    const OIIO::ImageBuf rounded = image.copy(OIIO::TypeUInt8).copy(OIIO::TypeFloat);
    EXPECT_TRUE(sameBits(odds, OIIO::ImageBufAlgo::channels(rounded, 1, {})));
}

TEST(WriteImage, RefusesWhatItCannotWriteSafely)
{
    const TemporaryFolder folder;
    for (const char* name : {"a.JPEG", "a.jfif", "a.null", "a.txt", "png", "a.hdr", "a.ppm"})
        EXPECT_THROW(writeImage(picture(4, 3, 1), folder / name), BakeError) << name;
    EXPECT_TRUE(folder.entries().empty());
}

TEST(MaterialBakes, OfBumpImagesTakeTheImagesOwnAttributes)
{
    const TemporaryFolder folder;
    OIIO::ImageBuf height = picture(32, 24, 2);
    height.specmod().attribute("bump_amount", 0.5f);
    BumpBake bump;
    bump.image = folder / "bröck.v2.exr";
    writeImage(height, bump.image);
    const BakeOutcome outcome = library.bakeForMaterial(bump, {}, folder / "baked.png");
    EXPECT_EQ(outcome.message, "");
    EXPECT_EQ(outcome.file, encodeFor("a.png", bakeNormalImage(height, height.spec())));

    NormalBakeOptions options;
    options.bumpAmount = 0.25f;
    options.realWorldScale = {2.0f, 4.0f};
    options.bumpScale = {1.0f, 3.0f};
    ASSERT_TRUE(library.bakeNormalMapFile(bump.image, folder / "normal.exr", options).success);
    EXPECT_TRUE(sameBits(read(folder / "normal.exr"), bakeNormals(height, options)));
}

TEST(MaterialBakes, OfNoiseAreItsNormals)
{
    const TemporaryFolder folder;
    const NoiseBumpBake bump{noiseOptions(64), 0.25f};
    const BakeOutcome outcome = library.bakeForMaterial(bump, {}, folder / "baked.png");
    ASSERT_EQ(outcome.warnings.size(), 1U) << outcome.message;
    EXPECT_NE(outcome.warnings[0].find("baked.png: 40 noise levels"), std::string::npos);
    NoiseBumpBake most = bump;
    most.noise.levels = 32.0f;
    EXPECT_TRUE(library.bakeForMaterial(most, {}, folder / "most.png").warnings.empty());
    ASSERT_TRUE(library.bakeNoiseFile(folder / "noise.exr", bump.noise).success);
    const OIIO::ImageBuf noise = read(folder / "noise.exr");
    EXPECT_TRUE(sameBits(noise, bakeNoise(bump.noise)));
    NormalBakeOptions options;
    options.bumpAmount = 0.25f;
    EXPECT_EQ(outcome.file, encodeFor("a.png", bakeNormals(noise, options)));
}

TEST(MaterialBakes, ThatFailSayWhy)
{
    const TemporaryFolder folder;
    writeImage(picture(32, 32, 1), folder / "height.png");
    BumpBake bump{folder / "height.png"};
    BakeSettings few, packed, many;
    few.limits.pixels = 32 * 32 - 1;
    packed.limits.decodedBytes = 32 * 32 - 1;
    many.limits.pixels = std::uint64_t{1} << 62;
    NoiseBumpBake noise{noiseOptions(8)};
    NormalBakeOptions noScale;
    noScale.bumpAmount = 1.0f;
    noScale.realWorldScale = {1.0f, 0.0f};
    const auto before = folder.entries();

    const auto file = folder / "a.png";
    const auto expect = [](const char* reason, const BakeOutcome& outcome)
    {
        EXPECT_TRUE(outcome.file.empty()) << reason;
        EXPECT_NE(outcome.message.find(reason), std::string::npos) << outcome.message;
    };
    expect("nothing.png: no such image",
           library.bakeForMaterial(BumpBake{folder / "nothing.png"}, {}, file));
    expect("height.png: 32 x 32 pixels are more", library.bakeForMaterial(bump, few, file));
    expect("height.png: 1024 bytes when unpacked are more",
           library.bakeForMaterial(bump, packed, file));
    expect("a.png: 64 x 64 pixels are more",
           library.bakeForMaterial(NoiseBumpBake{noiseOptions(64)}, few, file));
    expect("a.png: 0 x 0 is no image", library.bakeForMaterial(NoiseBumpBake{}, {}, file));
    expect("a.png: the bump amount",
           library.bakeForMaterial(NoiseBumpBake{noise.noise, infinity}, {}, file));
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    // Sanitizers end the program instead.
    noise.noise = noiseOptions(1 << 23);
    expect("a.png: not enough memory", library.bakeForMaterial(noise, many, file));
#endif
    const std::pair<BakeResult, const char*> results[] = {
        {library.bakeNormalMapFile(bump.image, bump.image, {}),
         "height.png: the normal map would overwrite"},
        {library.bakeNormalMapFile(bump.image, folder / "a.jpg", {}),
         "a.jpg: baked images are not"},
        {library.bakeNormalMapFile(bump.image, file, noScale), "a.png: the bump amount"},
        {library.bakeNoiseFile(folder / "a.txt", noise.noise), "a.txt: the extension is none of"},
        {library.bakeNormalMapFile(bump.image, bump.image / "a.png", {}),
         "a.png: cannot be written: "},
    };
    for (const auto& [result, reason] : results)
        EXPECT_NE(result.message.find(reason), std::string::npos) << result.message;
    EXPECT_EQ(folder.entries(), before);
}

} // namespace vyr::MaterialTranslation::baking
