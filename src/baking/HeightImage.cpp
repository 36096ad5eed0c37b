#include "baking/HeightImage.h"

#include "baking/BakeError.h"
#include "baking/ParallelRows.h"

#include <OpenImageIO/imageio.h>
#include <OpenImageIO/strutil.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <fstream>
#include <iterator>
#include <memory>
#include <string_view>

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

constexpr Signature kSignatures[] = {
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
    {"P1"sv, "pnm"},
    {"P2"sv, "pnm"},
    {"P3"sv, "pnm"},
    {"P4"sv, "pnm"},
    {"P5"sv, "pnm"},
    {"P6"sv, "pnm"},
    {"PF"sv, "pnm"},
    {"Pf"sv, "pnm"},
};

constexpr const char* kTargaExtensions[] = {".tga", ".tpic"};

const char* formatOf(const std::filesystem::path& path, std::string_view start)
{
    for (const Signature& signature : kSignatures)
    {
        if (start.substr(0, signature.bytes.size()) == signature.bytes)
        {
            return signature.format;
        }
    }
    if (start.size() >= 12 && start.substr(0, 4) == "RIFF" && start.substr(8, 4) == "WEBP")
    {
        return "webp";
    }
    const std::string extension = utf8(path.extension());
    for (const char* targa : kTargaExtensions)
    {
        if (OIIO::Strutil::iequals(extension, targa))
        {
            return "targa";
        }
    }
    return nullptr;
}

/// The first bytes of a regular file; devices and pipes could block for ever.
std::string startOf(const std::filesystem::path& path)
{
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error))
    {
        throw BakeError(fmt::format("{}: no such image file", utf8(path)));
    }
    std::ifstream file(path, std::ios::binary);
    std::array<char, 16> bytes{};
    file.read(bytes.data(), bytes.size());
    if (file.bad() || !file.is_open())
    {
        throw BakeError(fmt::format("{}: the image file cannot be read", utf8(path)));
    }
    if (file.gcount() == 0)
    {
        throw BakeError(fmt::format("{}: the image file is empty", utf8(path)));
    }
    return {bytes.data(), static_cast<std::size_t>(file.gcount())};
}

/// Where the pixel data of a JPEG file begin: behind the segments of the header, which may hold a smaller
/// picture of their own. The end of the file when there are none.
std::streamoff jpegDataBegin(std::ifstream& file, std::streamoff size)
{
    std::streamoff at = 2;
    while (at + 4 <= size)
    {
        std::array<unsigned char, 4> segment{};
        file.seekg(at);
        file.read(reinterpret_cast<char*>(segment.data()), segment.size());
        constexpr unsigned char kStartOfScan = 0xDA;
        if (!file || segment[0] != 0xFF || segment[1] == kStartOfScan)
        {
            return at;
        }
        constexpr unsigned char kFill = 0xFF;
        at += segment[1] == kFill ? 1 : 2 + (segment[2] << 8 | segment[3]);
    }
    return size;
}

/// Decoders of JPEG fill in grey for what is missing, and call it a warning. A file with all its data has an end
/// marker, which cannot occur within the data; what other programs append is rarely long.
void checkJpegEnd(const std::filesystem::path& path)
{
    constexpr std::streamoff kTail = 65536;
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    const std::streamoff size = file.tellg();
    const std::streamoff begin = jpegDataBegin(file, size);
    file.clear();
    file.seekg(std::max(size - kTail, begin));
    const std::string tail{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (tail.find("\xFF\xD9") == std::string::npos)
    {
        throw BakeError(fmt::format("{}: the image file is truncated", utf8(path)));
    }
}

/// OpenImageIO's words on one line.
std::string reason(const std::string& error)
{
    std::string line(OIIO::Strutil::strip(error));
    std::ranges::replace(line, '\n', ' ');
    return line.empty() ? "the image file is damaged" : line;
}

std::unique_ptr<OIIO::ImageInput> openImage(const std::filesystem::path& path, const char* format,
                                            int threads, OIIO::ImageSpec& spec)
{
    auto input = OIIO::ImageInput::create(format);
    if (!input)
    {
        throw BakeError(fmt::format("{}: {}", utf8(path), reason(OIIO::geterror())));
    }
    OIIO::ImageSpec hints;
    hints.attribute("oiio:UnassociatedAlpha", 1);
    input->threads(threads);
    if (!input->open(utf8(path), spec, hints))
    {
        throw BakeError(fmt::format("{}: {}", utf8(path), reason(input->geterror())));
    }
    return input;
}

void checkShape(const std::filesystem::path& path, const OIIO::ImageSpec& spec,
                const ImageLimits& limits)
{
    checkPixels(utf8(path), spec.width, spec.height, limits);
    if (spec.depth > 1 || spec.deep)
    {
        throw BakeError(fmt::format("{}: volumes and deep images have no heights", utf8(path)));
    }
    if (spec.nchannels < 1 || spec.nchannels > limits.channels)
    {
        throw BakeError(fmt::format("{}: {} channels, but an image may have 1 to {}", utf8(path),
                                    spec.nchannels, limits.channels));
    }
}
} // namespace

std::string utf8(const std::filesystem::path& path)
{
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

void checkPixels(const std::string& what, int width, int height, const ImageLimits& limits)
{
    if (width < 1 || height < 1)
    {
        throw BakeError(fmt::format("{}: {} x {} is no image", what, width, height));
    }
    if (static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height) > limits.pixels)
    {
        throw BakeError(fmt::format("{}: {} x {} pixels are more than the limit of {}", what, width,
                                    height, limits.pixels));
    }
}

HeightImage readHeightImage(const std::filesystem::path& path, const ImageLimits& limits,
                            int threads)
{
    const char* format = formatOf(path, startOf(path));
    if (format == nullptr)
    {
        throw BakeError(fmt::format(
            "{}: not a png, jpeg, tiff, exr, targa, bmp, hdr, webp, sgi or pnm image", utf8(path)));
    }
    if (std::string_view(format) == "jpeg")
    {
        checkJpegEnd(path);
    }
    HeightImage image;
    const auto input = openImage(path, format, threads, image.source);
    checkShape(path, image.source, limits);
    const OIIO::ImageSpec spec(image.source.width, image.source.height, 1, OIIO::TypeFloat);
    image.heights = uninitializedImage("heightmap_float", spec);
    const bool whole = input->read_image(0, 0, 0, 1, OIIO::TypeFloat, image.heights.localpixels());
    // The reader of TIFF returns true although strips are missing.
    const std::string error = input->geterror();
    if (!whole || !error.empty())
    {
        throw BakeError(fmt::format("{}: {}", utf8(path), reason(error)));
    }
    return image;
}
} // namespace vyr::MaterialTranslation::baking
