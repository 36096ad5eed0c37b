#include "baking/ImageFile.h"

#include <algorithm>

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>
#include <OpenImageIO/strutil.h>
#include <fmt/format.h>

#include "baking/PngFile.h"
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
                   ? encodePng(image, threads)
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
    if (const auto error = base::writeFile(destination, base::textOf(bytes)).error)
        throw BakeError(destination, "cannot be written: " + error.message());
}

} // namespace vyr::MaterialTranslation::baking
