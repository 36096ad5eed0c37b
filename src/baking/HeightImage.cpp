#include "baking/ImageFile.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <fstream>
#include <iterator>
#include <memory>
#include <string_view>

#include <OpenImageIO/imageio.h>
#include <OpenImageIO/strutil.h>
#include <fmt/format.h>

#include "base/Paths.h"
#include "base/Text.h"

namespace vyr::MaterialTranslation::baking
{

namespace
{

using std::string_view_literals::operator""sv;

/// The bytes by which a format is known. They come first in the file.
struct Signature
{
    std::string_view bytes;
    const char* format;
};

constexpr Signature signatures[] = {
    {"\x89PNG\r\n\x1A\n"sv, "png"},
    {"\xFF\xD8\xFF"sv, "jpeg"},
    {"II*\0"sv, "tiff"},
    {"MM\0*"sv, "tiff"},
    {"II+\0"sv, "tiff"},
    {"MM\0+"sv, "tiff"},
    {"v/1\x01"sv, "openexr"},
    {"BM"sv, "bmp"},
    {"#?"sv, "hdr"},
    {"\x01\xDA"sv, "sgi"},
};

const char* formatOf(const std::filesystem::path& path, std::string_view start)
{
    for (const Signature& signature : signatures)
        if (start.starts_with(signature.bytes))
            return signature.format;
    if (start.size() >= 2 && start[0] == 'P' && "123456Ff"sv.find(start[1]) != std::string::npos)
        return "pnm";
    if (start.starts_with("RIFF") && start.find("WEBP"sv) == 8)
        return "webp";
    const std::string extension = base::utf8FromPath(path.extension());
    const bool targa =
        base::equalsIgnoringCase(extension, ".tga") || base::equalsIgnoringCase(extension, ".tpic");
    return targa ? "targa" : nullptr;
}

/// The first bytes of a regular file; devices and pipes could block for ever.
std::string startOf(const std::filesystem::path& path)
{
    if (!base::isFile(path))
        throw BakeError(path, "no such image file");
    // Files that the system makes up are empty by their size, and some of them wait for ever.
    std::error_code error;
    if (std::filesystem::file_size(path, error) == 0)
        throw BakeError(path, "the image file is empty");
    std::ifstream file(path, std::ios::binary);
    std::array<char, 16> bytes{};
    file.read(bytes.data(), bytes.size());
    if (file.bad() || !file.is_open() || file.gcount() == 0)
        throw BakeError(path, "the image file cannot be read");
    return {bytes.data(), static_cast<std::size_t>(file.gcount())};
}

/// Where the pixel data of a JPEG file begin: behind the segments of the header, which may hold a smaller
/// picture of their own. The end of the file when there are none.
std::streamoff jpegDataBegin(std::ifstream& file, std::streamoff size)
{
    constexpr unsigned char startOfScan = 0xDA;
    constexpr unsigned char fill = 0xFF;
    std::streamoff at = 2;
    while (at + 4 <= size)
    {
        std::array<unsigned char, 4> segment{};
        file.seekg(at);
        file.read(reinterpret_cast<char*>(segment.data()), segment.size());
        if (!file || segment[0] != 0xFF || segment[1] == startOfScan)
            return at;
        at += segment[1] == fill ? 1 : 2 + (segment[2] << 8 | segment[3]);
    }
    return size;
}

/// Decoders of JPEG fill in grey for what is missing, and call it a warning. A file with all its data has an end
/// marker, which cannot occur within the data; what other programs append is rarely long.
void checkJpegEnd(const std::filesystem::path& path)
{
    constexpr std::streamoff tailSize = 65536;
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    const std::streamoff size = file.tellg();
    const std::streamoff begin = jpegDataBegin(file, size);
    file.clear();
    file.seekg(std::max(size - tailSize, begin));
    const std::string tail{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (tail.find("\xFF\xD9") == std::string::npos)
        throw BakeError(path, "the image file is truncated");
}

/// OpenImageIO's words on one line. They may quote the file.
std::string reason(const std::string& error)
{
    std::string line(OIIO::Strutil::strip(error));
    std::ranges::replace(line, '\n', ' ');
    line = base::printable(line);
    return line.empty() ? "the image file is damaged" : line;
}

std::unique_ptr<OIIO::ImageInput> openImage(const std::filesystem::path& path, const char* format,
                                            int threads, OIIO::ImageSpec& spec)
{
    auto input = OIIO::ImageInput::create(format);
    if (!input)
        throw BakeError(path, reason(OIIO::geterror()));
    OIIO::ImageSpec hints;
    hints.attribute("oiio:UnassociatedAlpha", 1);
    input->threads(threads);
    if (!input->open(base::utf8FromPath(path), spec, hints))
        throw BakeError(path, reason(input->geterror()));
    return input;
}

void checkShape(const std::filesystem::path& path, const OIIO::ImageSpec& spec,
                const ImageLimits& limits)
{
    checkPixels(path, spec.width, spec.height, limits);
    if (spec.depth > 1 || spec.deep)
        throw BakeError(path, "volumes and deep images have no heights");
    if (spec.nchannels < 1 || spec.nchannels > limits.channels)
        throw BakeError(path, fmt::format("{} channels, but an image may have 1 to {}",
                                          spec.nchannels, limits.channels));
    if (spec.image_bytes(true) > limits.decodedBytes)
        throw BakeError(path, fmt::format("{} bytes when unpacked are more than the limit of {}",
                                          spec.image_bytes(true), limits.decodedBytes));
}

} // namespace

void checkPixels(const std::filesystem::path& file, int width, int height,
                 const ImageLimits& limits)
{
    if (width < 1 || height < 1)
        throw BakeError(file, fmt::format("{} x {} is no image", width, height));
    if (static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height) > limits.pixels)
        throw BakeError(file, fmt::format("{} x {} pixels are more than the limit of {}", width,
                                          height, limits.pixels));
}

std::string_view imageFormat(const std::filesystem::path& path)
{
    const char* format = formatOf(path, startOf(path));
    return format ? format : std::string_view();
}

HeightImage readHeightImage(const std::filesystem::path& path, const ImageLimits& limits,
                            int threads, int channels)
{
    const char* const format = formatOf(path, startOf(path));
    if (format == nullptr)
        throw BakeError(path,
                        "not a png, jpeg, tiff, exr, targa, bmp, hdr, webp, sgi or pnm image");
    if (format == "jpeg"sv)
        checkJpegEnd(path);
    HeightImage image;
    const auto input = openImage(path, format, threads, image.source);
    checkShape(path, image.source, limits);
    const int kept = std::min(channels, image.source.nchannels);
    const OIIO::ImageSpec spec(image.source.width, image.source.height, kept, OIIO::TypeFloat);
    image.heights = uninitializedImage("heightmap_float", spec);
    const bool whole =
        input->read_image(0, 0, 0, kept, OIIO::TypeFloat, image.heights.localpixels());
    // The reader of TIFF returns true although strips are missing.
    const std::string error = input->geterror();
    if (!whole || !error.empty())
        throw BakeError(path, reason(error));
    return image;
}

} // namespace vyr::MaterialTranslation::baking
