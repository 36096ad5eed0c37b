#include "baking/PngFile.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>
#include <stdexcept>
#include <string_view>
#include <utility>

#include <fmt/format.h>
#include <libdeflate.h>

#include "baking/DeflateStrip.h"
#include "baking/ImageRows.h"
#include "baking/PngPacking.h"
#include "baking/PngRows.h"

namespace vyr::MaterialTranslation::baking
{

namespace
{

using Bytes = std::span<const unsigned char>;
using Number = std::array<unsigned char, 4>;

constexpr unsigned char zlibHeader[] = {0x78, 0x9C};

Number bigEndian(std::uint32_t value)
{
    const auto byte = [value](unsigned shift)
    { return static_cast<unsigned char>(value >> shift); };
    return {byte(24), byte(16), byte(8), byte(0)};
}

/// A chunk's name and data, checksum included.
class Chunk
{
  public:
    explicit Chunk(std::string_view name) { add(name.data(), name.size()); }

    void add(const void* data, std::size_t size)
    {
        const auto* begin = static_cast<const unsigned char*>(data);
        _bytes.insert(_bytes.end(), begin, begin + size);
        _checksum = libdeflate_crc32(_checksum, data, size);
    }
    void add(Bytes bytes) { add(bytes.data(), bytes.size()); }

    std::size_t fileSize() const { return _bytes.size() + 2 * sizeof(Number); }

    void appendTo(std::vector<unsigned char>& file) const
    {
        const Number size = bigEndian(static_cast<std::uint32_t>(_bytes.size() - sizeof(Number)));
        const Number checksum = bigEndian(_checksum);
        file.insert(file.end(), size.begin(), size.end());
        file.insert(file.end(), _bytes.begin(), _bytes.end());
        file.insert(file.end(), checksum.begin(), checksum.end());
    }

  private:
    std::vector<unsigned char> _bytes;
    std::uint32_t _checksum = 0;
};

/// zlib's checksum of two pieces of data, one behind the other.
std::uint32_t joinedAdler(std::uint32_t first, std::uint32_t second, std::size_t secondSize)
{
    constexpr std::uint64_t modulus = 65521;
    const std::uint64_t before = (first & 0xFFFFU) + modulus - 1;
    const std::uint64_t low = (before + (second & 0xFFFFU)) % modulus;
    const std::uint64_t high =
        ((first >> 16U) + (second >> 16U) + before % modulus * (secondSize % modulus)) % modulus;
    return static_cast<std::uint32_t>(high << 16U | low);
}

/// Rows packed into a chunk of their own.
struct Strip
{
    Chunk chunk{"IDAT"};
    std::uint32_t adler = 1;
    std::size_t size = 0;
};

Strip packRows(const OIIO::ImageBuf& image, int yBegin, int yEnd, PngPacking packing)
{
    const OIIO::ImageSpec& spec = image.spec();
    const auto channels = static_cast<std::size_t>(spec.nchannels);
    const std::size_t values = static_cast<std::size_t>(spec.width) * channels;
    const auto row = [&](int y) { return static_cast<const float*>(image.pixeladdr(0, y)); };
    std::vector<unsigned char> filtered(static_cast<std::size_t>(yEnd - yBegin) * (1 + values));
    PngRows rows(values, channels, packing.filter);
    if (yBegin > 0)
        rows.setAbove(row(yBegin - 1));
    unsigned char* to = filtered.data();
    for (int y = yBegin; y < yEnd; ++y, to += 1 + values)
        rows.add(row(y), to);

    Strip strip;
    strip.size = filtered.size();
    strip.adler = libdeflate_adler32(1, filtered.data(), filtered.size());
    if (yBegin == 0)
        strip.chunk.add(zlibHeader);
    std::vector<unsigned char> packed = pack(filtered, packing.level);
    if (yEnd < spec.height)
        openEnd(packed);
    strip.chunk.add(packed);
    return strip;
}

std::vector<Strip> packStrips(const OIIO::ImageBuf& image, int threads)
{
    const OIIO::ImageSpec& spec = image.spec();
    const std::size_t rowBytes =
        1 + static_cast<std::size_t>(spec.width) * static_cast<std::size_t>(spec.nchannels);
    const PngPacking packing = choosePngPacking(image, threads);
    const int rows = static_cast<int>(std::clamp<std::size_t>(
        packing.stripBytes / rowBytes, 1, static_cast<std::size_t>(spec.height)));
    std::vector<Strip> strips(static_cast<std::size_t>((spec.height + rows - 1) / rows));
    forEachTask(static_cast<int>(strips.size()), threads,
                [&](int i)
                {
                    strips[static_cast<std::size_t>(i)] =
                        packRows(image, i * rows, std::min((i + 1) * rows, spec.height), packing);
                });
    return strips;
}

Chunk header(const OIIO::ImageSpec& spec)
{
    constexpr unsigned char grey = 0;
    constexpr unsigned char color = 2;
    constexpr unsigned char alpha = 4;
    constexpr unsigned char kinds[] = {grey, grey + alpha, color, color + alpha};
    if (spec.nchannels < 1 || spec.nchannels > 4)
        throw std::runtime_error(fmt::format("PNG has no images of {} channels", spec.nchannels));
    Chunk chunk("IHDR");
    chunk.add(bigEndian(static_cast<std::uint32_t>(spec.width)));
    chunk.add(bigEndian(static_cast<std::uint32_t>(spec.height)));
    const unsigned char bits = 8;
    const unsigned char rest[] = {bits, kinds[spec.nchannels - 1], 0, 0, 0};
    chunk.add(rest);
    return chunk;
}

/// Gamma 1 tells every reader, the text tells the image library's, which gives back the attribute.
std::vector<Chunk> colorSpace(const OIIO::ImageSpec& spec)
{
    using namespace std::string_view_literals;
    if (spec.get_string_attribute("oiio:ColorSpace") != "Linear")
        return {};
    constexpr auto text = "oiio:ColorSpace\0Linear"sv;
    std::vector<Chunk> chunks{Chunk("gAMA"), Chunk("tEXt")};
    chunks[0].add(bigEndian(100000));
    chunks[1].add(text.data(), text.size());
    return chunks;
}

} // namespace

std::vector<unsigned char> encodePng(const OIIO::ImageBuf& image, int threads)
{
    constexpr unsigned char signature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    std::vector<Chunk> chunks{header(image.spec())};
    std::ranges::move(colorSpace(image.spec()), std::back_inserter(chunks));
    std::uint32_t adler = 1;
    for (Strip& strip : packStrips(image, threads))
    {
        adler = joinedAdler(adler, strip.adler, strip.size);
        chunks.push_back(std::move(strip.chunk));
    }
    chunks.back().add(bigEndian(adler));
    chunks.emplace_back("IEND");

    std::size_t size = std::size(signature);
    for (const Chunk& chunk : chunks)
        size += chunk.fileSize();
    std::vector<unsigned char> file;
    file.reserve(size);
    file.assign(std::begin(signature), std::end(signature));
    for (const Chunk& chunk : chunks)
        chunk.appendTo(file);
    return file;
}

} // namespace vyr::MaterialTranslation::baking
