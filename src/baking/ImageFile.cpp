#include "baking/ImageFile.h"

#include "baking/BakeError.h"
#include "baking/ParallelRows.h"
#include "baking/PngCompression.h"
#include "baking/ReplaceFile.h"

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>
#include <OpenImageIO/strutil.h>

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>
#include <string_view>

namespace vyr::MaterialTranslation::baking
{
namespace
{
constexpr const char* kWritableFormats[] = {"png", "tiff", "openexr", "targa", "bmp",
                                            "hdr", "webp", "sgi",     "pnm"};

/// OpenImageIO's name of the format that the extension stands for; empty when it is none.
std::string formatOfExtension(const std::filesystem::path& destination)
{
    const auto output = OIIO::ImageOutput::create("image" + utf8(destination.extension()));
    if (!output)
    {
        OIIO::geterror();
        return {};
    }
    return output->format_name();
}

std::string writableFormat(const std::filesystem::path& destination)
{
    std::string format = formatOfExtension(destination);
    if (format == "jpeg")
    {
        throw BakeError(
            fmt::format("{}: baked images are not written as JPEG, whose loss would show in "
                        "the shading; write png, tif or exr",
                        utf8(destination)));
    }
    if (std::find(std::begin(kWritableFormats), std::end(kWritableFormats), format) ==
        std::end(kWritableFormats))
    {
        throw BakeError(
            fmt::format("{}: the extension is none of png, tif, exr, tga, bmp, hdr, webp, "
                        "sgi, ppm, pgm, pnm and pfm",
                        utf8(destination)));
    }
    return format;
}

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
                        {
                            OIIO::convert_pixel_values(
                                OIIO::TypeFloat, image.pixeladdr(0, y), OIIO::TypeUInt8,
                                bytes.get() + static_cast<std::size_t>(y) * rowValues,
                                static_cast<int>(rowValues));
                        }
                    });
    return encodePng(bytes.get(), spec);
}
} // namespace

std::vector<unsigned char> encodeImage(const char* format, const OIIO::ImageSpec& spec,
                                       OIIO::TypeDesc type, const void* pixels, int threads)
{
    std::vector<unsigned char> bytes;
    OIIO::Filesystem::IOVecOutput memory(bytes);
    const auto output = OIIO::ImageOutput::create(format);
    if (!output)
    {
        throw BakeError(OIIO::geterror());
    }
    output->threads(threads);
    const std::string name = std::string("image.") + format;
    if (!output->set_ioproxy(&memory) || !output->open(name, spec) ||
        !output->write_image(type, pixels) || !output->close())
    {
        throw BakeError(std::string(OIIO::Strutil::strip(output->geterror())));
    }
    return bytes;
}

void checkWritable(const std::filesystem::path& destination)
{
    writableFormat(destination);
}

void writeImage(const OIIO::ImageBuf& image, const std::filesystem::path& destination, int threads)
{
    const std::string format = writableFormat(destination);
    std::vector<unsigned char> bytes;
    try
    {
        bytes = format == "png" ? encodeAsPng(image, threads)
                                : encodeImage(format.c_str(), image.spec(), image.spec().format,
                                              image.localpixels(), threads);
    }
    catch (const BakeError& error)
    {
        throw BakeError(fmt::format("{}: {}", utf8(destination), error.what()));
    }
    replaceFile(destination, bytes);
}
} // namespace vyr::MaterialTranslation::baking
