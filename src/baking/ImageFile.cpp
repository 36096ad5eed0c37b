#include "baking/ImageFile.h"

#include "baking/BakeError.h"
#include "baking/ParallelRows.h"
#include "baking/PngCompression.h"
#include "base/WriteFile.h"

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>
#include <OpenImageIO/strutil.h>

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>
#include <string>

namespace vyr::MaterialTranslation::baking
{
namespace
{
/// Of the pnm family only pfm: the image library would write floats under the other extensions too.
constexpr const char* kExtensions[] = {".png", ".tif", ".tiff", ".exr", ".tga",
                                       ".bmp", ".hdr", ".webp", ".sgi", ".pfm"};

constexpr const char* kJpegExtensions[] = {".jpg", ".jpeg", ".jpe", ".jfif", ".jfi", ".jif"};

template <std::size_t kCount> bool isOneOf(const std::string& text,
                                           const char* const (&list)[kCount])
{
    return std::any_of(std::begin(list), std::end(list),
                       [&](const char* entry) { return OIIO::Strutil::iequals(text, entry); });
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

std::vector<unsigned char> encodeImage(const std::string& name, OIIO::ImageSpec spec,
                                       OIIO::TypeDesc type, const void* pixels, int threads)
{
    // Without it some writers put in the time, and no two files were the same.
    spec.attribute("DateTime", "");
    std::vector<unsigned char> bytes;
    OIIO::Filesystem::IOVecOutput memory(bytes);
    const auto output = OIIO::ImageOutput::create(name);
    if (!output)
    {
        throw BakeError(OIIO::geterror());
    }
    output->threads(threads);
    if (!output->set_ioproxy(&memory) || !output->open(name, spec) ||
        !output->write_image(type, pixels) || !output->close())
    {
        throw BakeError(std::string(OIIO::Strutil::strip(output->geterror())));
    }
    return bytes;
}

void checkWritable(const std::filesystem::path& destination)
{
    const std::string extension = utf8(destination.extension());
    if (isOneOf(extension, kJpegExtensions))
    {
        throw BakeError(
            fmt::format("{}: baked images are not written as JPEG, whose loss would show "
                        "in the shading; write png, tif or exr",
                        utf8(destination)));
    }
    if (!isOneOf(extension, kExtensions))
    {
        throw BakeError(
            fmt::format("{}: the extension is none of png, tif, tiff, exr, tga, bmp, hdr, "
                        "webp, sgi and pfm",
                        utf8(destination)));
    }
}

void writeImage(const OIIO::ImageBuf& image, const std::filesystem::path& destination, int threads)
{
    checkWritable(destination);
    const std::string extension = utf8(destination.extension());
    std::vector<unsigned char> bytes;
    try
    {
        bytes = OIIO::Strutil::iequals(extension, ".png")
                    ? encodeAsPng(image, threads)
                    : encodeImage("image" + extension, image.spec(), image.spec().format,
                                  image.localpixels(), threads);
    }
    catch (const BakeError& error)
    {
        throw BakeError(fmt::format("{}: {}", utf8(destination), error.what()));
    }
    const auto error =
        base::writeFile(destination, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    if (error)
    {
        throw BakeError(
            fmt::format("{}: cannot be written: {}", utf8(destination), error.message()));
    }
}
} // namespace vyr::MaterialTranslation::baking
