#include "baking/ImageFile.h"

#include <algorithm>
#include <cstddef>
#include <memory>

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>
#include <OpenImageIO/strutil.h>
#include <fmt/format.h>

#include "base/Paths.h"
#include "base/Text.h"
#include "base/WriteFile.h"

namespace vyr::MaterialTranslation::baking
{

namespace
{

/// Of the pnm family only pfm: the image library would write floats under the other extensions too.
constexpr const char* extensions[] = {".png", ".tif", ".tiff", ".exr", ".tga",
                                      ".bmp", ".hdr", ".webp", ".sgi", ".pfm"};

constexpr const char* jpegExtensions[] = {".jpg", ".jpeg", ".jpe", ".jfif", ".jfi", ".jif"};

/// Bits of PNG's row filters.
constexpr int noFilter = 0x08;
constexpr int upFilter = 0x20;
constexpr int averageFilter = 0x40;
constexpr int paethFilter = 0x80;

struct PngSetting
{
    const char* strategy; ///< null: the library's own choice
    int level;            ///< 1 to 9
    int filter;
};

/// Fastest first: for photographs and noise, for smooth and flat pictures, and for patterns, where only a
/// search for repetitions packs well.
constexpr PngSetting fastSettings[] = {
    {"huffman", 6, averageFilter}, {"huffman", 6, paethFilter}, {"rle", 6, paethFilter},
    {nullptr, 4, upFilter},        {nullptr, 5, upFilter},      {nullptr, 6, noFilter},
};

/// The sample: strips of rows spread over the picture, each long enough for what filters and packing look
/// back at, together few enough to cost little beside the whole.
constexpr std::ptrdiff_t mostStrips = 8;
constexpr std::ptrdiff_t stripRows = 4;
constexpr std::ptrdiff_t sampleShare = 16;
constexpr std::ptrdiff_t samplePixels = 1 << 17;

/// How much larger than with the default setting the sample may be. What the default cannot pack well is
/// large, so little is given away there; what it packs well is small either way.
constexpr std::size_t wellPacked = 8; ///< to less than one in so many bytes
constexpr std::size_t percentOfLarge = 103;
constexpr std::size_t percentOfSmall = 120;

std::vector<unsigned char> encodeWith(const unsigned char* pixels, OIIO::ImageSpec spec,
                                      const PngSetting* setting)
{
    spec.set_format(OIIO::TypeUInt8);
    if (setting != nullptr)
    {
        spec.attribute("png:compressionLevel", setting->level);
        spec.attribute("png:filter", setting->filter);
        if (setting->strategy != nullptr)
            spec.attribute("compression", setting->strategy);
    }
    return encodeImage("image.png", spec, OIIO::TypeUInt8, pixels);
}

struct Sample
{
    OIIO::ImageSpec spec;
    std::vector<unsigned char> pixels;
};

/// Empty when the picture is so small that choosing is not worth it.
Sample sampleOf(const unsigned char* pixels, const OIIO::ImageSpec& spec)
{
    const std::ptrdiff_t sampled =
        std::min<std::ptrdiff_t>(samplePixels / spec.width, spec.height / sampleShare);
    const std::ptrdiff_t strips = std::min(sampled / stripRows, mostStrips);
    if (strips == 0)
        return {};
    const std::ptrdiff_t rows = sampled / strips;
    Sample sample{spec, {}};
    sample.spec.height = sample.spec.full_height = static_cast<int>(rows * strips);
    const std::ptrdiff_t rowBytes = static_cast<std::ptrdiff_t>(spec.width) * spec.nchannels;
    for (std::ptrdiff_t strip = 0; strip < strips; ++strip)
    {
        const std::ptrdiff_t y = (spec.height - rows) * (2 * strip + 1) / (2 * strips);
        const unsigned char* begin = pixels + y * rowBytes;
        sample.pixels.insert(sample.pixels.end(), begin, begin + rows * rowBytes);
    }
    return sample;
}

/// Null stands for the default.
const PngSetting* chooseSetting(const unsigned char* pixels, const OIIO::ImageSpec& spec)
{
    const Sample sample = sampleOf(pixels, spec);
    if (sample.pixels.empty())
        return nullptr;
    const auto packed = [&](const PngSetting* setting)
    { return encodeWith(sample.pixels.data(), sample.spec, setting).size(); };
    const std::size_t byDefault = packed(nullptr);
    const bool small = byDefault * wellPacked < sample.pixels.size();
    const std::size_t limit = byDefault * (small ? percentOfSmall : percentOfLarge) / 100;
    for (const PngSetting& setting : fastSettings)
        if (packed(&setting) <= limit)
            return &setting;
    return nullptr;
}

/// Rounds floats to bytes, as the image library does, and packs them.
std::vector<unsigned char> encodeAsPng(const OIIO::ImageBuf& image, int threads)
{
    const OIIO::ImageSpec& spec = image.spec();
    const std::size_t rowValues =
        static_cast<std::size_t>(spec.width) * static_cast<std::size_t>(spec.nchannels);
    const auto bytes = std::make_unique_for_overwrite<unsigned char[]>(
        rowValues * static_cast<std::size_t>(spec.height));
    forEachRowBlock(spec.width, spec.height, threads,
                    [&](int yBegin, int yEnd)
                    {
                        for (int y = yBegin; y < yEnd; ++y)
                            OIIO::convert_pixel_values(
                                OIIO::TypeFloat, image.pixeladdr(0, y), OIIO::TypeUInt8,
                                bytes.get() + static_cast<std::size_t>(y) * rowValues,
                                static_cast<int>(rowValues));
                    });
    return encodePng(bytes.get(), spec);
}

} // namespace

std::vector<unsigned char> encodeImage(const std::string& name, OIIO::ImageSpec spec,
                                       OIIO::TypeDesc type, const void* pixels, int threads)
{
    // Without it some writers put in the time, and no two files were the same.
    spec.attribute("DateTime", "");
    std::vector<unsigned char> bytes;
    OIIO::Filesystem::IOVecOutput memory(bytes);
    const auto output = OIIO::ImageOutput::create(name);
    if (!output)
        throw std::runtime_error(OIIO::geterror());
    output->threads(threads);
    if (!output->set_ioproxy(&memory) || !output->open(name, spec) ||
        !output->write_image(type, pixels) || !output->close())
        throw std::runtime_error(std::string(OIIO::Strutil::strip(output->geterror())));
    return bytes;
}

std::vector<unsigned char> encodePng(const unsigned char* pixels, const OIIO::ImageSpec& spec)
{
    return encodeWith(pixels, spec, chooseSetting(pixels, spec));
}

void checkWritable(const std::filesystem::path& destination)
{
    const std::string extension = base::utf8FromPath(destination.extension());
    const auto isExtension = [&](const char* known)
    { return base::equalsIgnoringCase(extension, known); };
    if (std::ranges::any_of(jpegExtensions, isExtension))
        throw BakeError(destination, "baked images are not written as JPEG, whose loss would show "
                                     "in the shading; write png, tif or exr");
    if (std::ranges::none_of(extensions, isExtension))
        throw BakeError(destination, "the extension is none of png, tif, tiff, exr, tga, bmp, hdr, "
                                     "webp, sgi and pfm");
}

std::vector<unsigned char> encodeFor(const std::filesystem::path& destination,
                                     const OIIO::ImageBuf& image, int threads)
{
    checkWritable(destination);
    const std::string extension = base::utf8FromPath(destination.extension());
    try
    {
        return base::equalsIgnoringCase(extension, ".png")
                   ? encodeAsPng(image, threads)
                   : encodeImage("image" + extension, image.spec(), image.spec().format,
                                 image.localpixels(), threads);
    }
    catch (const std::runtime_error& error)
    {
        throw BakeError(destination, error.what());
    }
}

void writeImage(const OIIO::ImageBuf& image, const std::filesystem::path& destination, int threads)
{
    const std::vector<unsigned char> bytes = encodeFor(destination, image, threads);
    if (const auto error = base::writeFile(destination, base::textOf(bytes)))
        throw BakeError(destination, "cannot be written: " + error.message());
}

} // namespace vyr::MaterialTranslation::baking
