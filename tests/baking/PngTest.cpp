#include <cmath>
#include <random>
#include <set>

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imagebufalgo.h>
#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>
#include <libdeflate.h>

#include "baking/DeflateStrip.h"
#include "baking/ImageFile.h"
#include "baking/Images.h"
#include "baking/NormalImage.h"
#include "baking/PngFile.h"
#include "baking/PngPacking.h"
#include "baking/PngRows.h"

namespace vyr::MaterialTranslation::baking
{

namespace
{

using Bytes = std::vector<unsigned char>;

constexpr auto kinds = 6;

/// Pictures that ask for different filters, and values beyond what bytes hold.
OIIO::ImageBuf drawn(int kind, int width, int height, int channels)
{
    OIIO::ImageBuf image = picture(width, height, channels);
    const float odd[] = {nan, -infinity, infinity, -1.0f, 2.0f, 0.5f, 1.0f / 510.0f, 1e-40f};
    for (OIIO::ImageBuf::Iterator<float> i(image); kind != 0 && !i.done(); ++i)
    {
        const auto x = static_cast<float>(i.x());
        const auto y = static_cast<float>(i.y());
        const float values[] = {0.0f,
                                odd[(i.x() + i.y()) % 8],
                                std::fmod(x * 0.0173f, 1.0f),
                                std::fmod(y * 0.0173f, 1.0f),
                                0.5f + 0.2f * std::sin(0.3f * x) + 0.2f * std::cos(0.2f * y),
                                i[0] * 5.0f + std::fmod(0.02f * (x + y), 0.5f)};
        for (int c = 0; c < channels; ++c)
            i[c] = values[kind];
    }
    return image;
}

/// The bytes that the image library's reader finds.
Bytes decoded(Bytes& file, int channels)
{
    OIIO::Filesystem::IOMemReader memory(file.data(), file.size());
    OIIO::ImageSpec spec;
    OIIO::ImageSpec hints;
    hints.attribute("oiio:UnassociatedAlpha", 1);
    const auto input = OIIO::ImageInput::create("png");
    input->set_ioproxy(&memory);
    if (!input->open("a.png", spec, hints) || spec.nchannels != channels)
        return {};
    Bytes pixels(spec.image_pixels() * static_cast<std::size_t>(channels));
    const bool whole = input->read_image(0, 0, 0, channels, OIIO::TypeUInt8, pixels.data());
    EXPECT_EQ(input->geterror(), "");
    return whole ? pixels : Bytes{};
}

Bytes unpacked(const Bytes& stream, std::size_t size)
{
    Bytes data(size);
    const auto decompressor = libdeflate_alloc_decompressor();
    const auto result = libdeflate_deflate_decompress(decompressor, stream.data(), stream.size(),
                                                      data.data(), data.size(), nullptr);
    libdeflate_free_decompressor(decompressor);
    return result == LIBDEFLATE_SUCCESS ? data : Bytes{};
}

/// Whether a file has the pixels as the image library rounds them, and is the same on all numbers of threads.
bool isReadBack(const OIIO::ImageBuf& image)
{
    Bytes file = encodePng(image, 1);
    EXPECT_EQ(file, encodePng(image, 3));
    const OIIO::ImageBuf rounded = image.copy(OIIO::TypeUInt8);
    const auto* pixels = static_cast<const unsigned char*>(rounded.localpixels());
    return decoded(file, image.nchannels()) == Bytes(pixels, pixels + rounded.spec().image_bytes());
}

} // namespace

TEST(EncodePng, IsReadBackAsTheImageLibraryRoundsWhateverTheThreads)
{
    // The last ones are packed in several strips.
    const std::pair<int, int> sizes[] = {{1, 1},   {1, 5},     {7, 1},     {33, 70},
                                         {3, 257}, {700, 300}, {60001, 5}, {1, 270000}};
    std::set<int> filters;
    for (const auto& [width, height] : sizes)
        for (const int channels : {1, 2, 3, 4})
            for (int kind = 0; kind < (width * height > 5000 ? 1 : kinds); ++kind)
            {
                const OIIO::ImageBuf image = drawn(kind, width, height, channels);
                EXPECT_TRUE(isReadBack(image))
                    << width << " x " << height << " x " << channels << ", " << kind;
                const auto values = static_cast<std::size_t>(width * channels);
                Bytes row(1 + values);
                PngRows rows(values, static_cast<std::size_t>(channels), PngFilter::Best);
                for (int y = 0; y < std::min(height, 20); ++y)
                {
                    rows.add(static_cast<const float*>(image.pixeladdr(0, y)), row.data());
                    filters.insert(row[0]);
                }
            }
    EXPECT_EQ(filters.size(), 5U) << "some filter was not tried";
    EXPECT_THROW(encodePng(picture(2, 2, 5)), std::runtime_error);
}

TEST(EncodePng, SmoothAndPlainPicturesArePackedTheirWay)
{
    const OIIO::ImageBuf smooth = drawn(4, 800, 800, 1);
    EXPECT_NE(choosePngPacking(smooth, 1).filter, PngFilter::Best);
    EXPECT_TRUE(isReadBack(smooth));
    // Larger than one of its strips.
    OIIO::ImageBuf plain(OIIO::ImageSpec(2100, 2100, 1, OIIO::TypeFloat));
    OIIO::ImageBufAlgo::fill(plain, 0.3f);
    EXPECT_LT(choosePngPacking(plain, 1).stripBytes, 2100U * 2100U);
    EXPECT_EQ(choosePngPacking(plain, 1).filter, PngFilter::Best);
    EXPECT_TRUE(isReadBack(plain));
}

TEST(EncodePng, IsNoLargerThanByDefault)
{
    for (int kind = 0; kind < kinds; ++kind)
    {
        const OIIO::ImageBuf heights = drawn(kind, 512, 512, 1);
        for (const OIIO::ImageBuf& image : {heights, bakeNormals(heights, {})})
        {
            const OIIO::ImageBuf bytes = image.copy(OIIO::TypeUInt8);
            const auto byDefault =
                encodeImage("a.png", bytes.spec(), OIIO::TypeUInt8, bytes.localpixels()).size();
            EXPECT_LE(encodePng(image).size() * 100, byDefault * 102) << kind;
        }
    }
}

TEST(DeflateStrip, OpenStreamsJoin)
{
    std::mt19937 random(5);
    Bytes stream;
    Bytes data;
    // Stored, fixed and dynamic blocks, one and many, with ends at all bits.
    for (std::size_t size = 0; size < 300000; size += 1 + size)
        for (const int level : {0, 1, 4, 6, 7, 12})
            for (const unsigned letters : {1U, 7U, 60U, 256U})
            {
                Bytes strip(size);
                for (auto& byte : strip)
                    byte = static_cast<unsigned char>(random() % letters * (random() % 2));
                Bytes packed = pack(strip, level);
                openEnd(packed);
                stream.insert(stream.end(), packed.begin(), packed.end());
                data.insert(data.end(), strip.begin(), strip.end());
            }
    const Bytes end = pack({}, 6);
    stream.insert(stream.end(), end.begin(), end.end());
    EXPECT_TRUE(unpacked(stream, data.size()) == data);
}

TEST(DeflateStrip, DamagedStreamsAreRefusedOrEnd)
{
    std::mt19937 random(3);
    Bytes data(9000);
    for (auto& byte : data)
        byte = static_cast<unsigned char>(random() % 11 * (random() % 7));
    int refused = 0;
    for (int i = 0; i < 1000; ++i)
    {
        Bytes packed = pack(data, i % 12);
        for (int change = 0; change <= i % 3; ++change)
            packed[random() % packed.size()] = static_cast<unsigned char>(random());
        if (i % 2 == 0)
            packed.resize(random() % packed.size());
        try
        {
            openEnd(packed);
        }
        catch (const std::runtime_error&)
        {
            ++refused;
        }
    }
    EXPECT_GE(refused, 500);
}

} // namespace vyr::MaterialTranslation::baking
