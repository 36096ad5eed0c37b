#include "baking/BrowserImage.h"

#include <algorithm>
#include <exception>
#include <fstream>
#include <iterator>
#include <string_view>

#include <OpenImageIO/imagebufalgo.h>

#include "baking/ImageFile.h"
#include "baking/PngFile.h"

namespace vyr::MaterialTranslation::baking
{

namespace
{

namespace fs = std::filesystem;

/// A format that browsers show as it is.
struct BrowserFormat
{
    std::string_view name;
    const char* type;
};

constexpr const char* pngType = "image/png";
constexpr const char* jpegType = "image/jpeg";
constexpr BrowserFormat formats[] = {{"png", pngType}, {"jpeg", jpegType}, {"webp", "image/webp"}};

/// Files of more bytes are packed anew, whatever their size in pixels.
constexpr std::uintmax_t mostBytes = std::uintmax_t{4} << 20;

const BrowserFormat* browserFormat(const fs::path& source)
{
    const auto* format = std::ranges::find(formats, imageFormat(source), &BrowserFormat::name);
    return format != std::end(formats) && fs::file_size(source) <= mostBytes ? format : nullptr;
}

std::vector<unsigned char> bytesOf(const fs::path& source)
{
    std::ifstream file(source, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// Colours with their alpha, if that is one of the first four channels, or a number with or without.
int channelsOf(const OIIO::ImageSpec& spec)
{
    const int colors = spec.nchannels < 3 ? 1 : 3;
    return spec.alpha_channel == colors ? colors + 1 : colors;
}

OIIO::ImageBuf scaled(const OIIO::ImageBuf& image, int largest, int threads)
{
    const OIIO::ImageSpec& spec = image.spec();
    const int longer = std::max(spec.width, spec.height);
    if (longer <= largest)
        return image;
    const auto shorten = [&](int length)
    {
        const auto product = static_cast<std::int64_t>(length) * largest;
        return std::max(static_cast<int>(product / longer), 1);
    };
    OIIO::ROI roi(0, shorten(spec.width), 0, shorten(spec.height), 0, 1, 0, spec.nchannels);
    // A filter without negative lobes: what is between 0 and 1 stays there.
    return OIIO::ImageBufAlgo::resize(image, {{"filtername", "triangle"}}, roi, threads);
}

BrowserImage packed(const OIIO::ImageBuf& image, int threads)
{
    const int channels = image.nchannels();
    BrowserImage result{true, {}, channels % 2 == 0 ? pngType : jpegType, {}};
    if (channels % 2 == 0)
        result.bytes = encodePng(image, threads);
    else
    {
        OIIO::ImageSpec spec(image.spec().width, image.spec().height, channels, OIIO::TypeUInt8);
        // Without it colours of pixels would be shared by their neighbours, which bends normals.
        spec.attribute("jpeg:subsampling", "4:4:4");
        spec.attribute("Compression", "jpeg:90");
        result.bytes =
            encodeImage("image.jpg", spec, OIIO::TypeFloat, image.localpixels(), threads);
    }
    return result;
}

} // namespace

BrowserImage browserImage(const fs::path& source, int largest, const BakeSettings& settings)
try
{
    const int threads = settings.threads;
    const HeightImage read = readHeightImage(source, settings.limits, threads, 4);
    const bool isSmall = std::max(read.source.width, read.source.height) <= largest;
    if (const BrowserFormat* const format = isSmall ? browserFormat(source) : nullptr)
        return {true, {}, format->type, bytesOf(source)};
    const int channels = channelsOf(read.source);
    const bool isWhole = read.heights.nchannels() == channels;
    return packed(
        scaled(isWhole ? read.heights : OIIO::ImageBufAlgo::channels(read.heights, channels, {}),
               largest, threads),
        threads);
}
catch (const std::exception& error)
{
    return {false, error.what(), {}, {}};
}

} // namespace vyr::MaterialTranslation::baking
