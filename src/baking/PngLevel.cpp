#include "baking/PngLevel.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "baking/DeflateStrip.h"
#include "baking/ImageFile.h"
#include "baking/ImageRows.h"
#include "baking/PngRows.h"

namespace vyr::MaterialTranslation::baking
{

namespace
{

/// Fastest first. Each is tried on the sample.
constexpr std::array fastLevels{2, 4, 6};
/// For what none of them packs well enough: it beat the default on every picture that was tried.
constexpr int bestLevel = 7;
/// For small pictures, where a sample would cost as much as it saves.
constexpr int smallLevel = 6;
constexpr std::int64_t smallBytes = 1 << 19;

/// How large the sample may be beside that of the default settings. Without the little more, noise that no level
/// packs would take the longest.
constexpr std::size_t permilleOfDefault = 1005;

/// The sample: a few parts of rows spread over the picture. It is twice as long as what deflate looks back at, or
/// it would tell little, and the parts are high enough for filters that look at the row above.
constexpr int parts = 4;
constexpr int leastRows = 4;
constexpr int sampleShare = 16;
constexpr std::int64_t leastBytes = 1 << 16;
constexpr std::int64_t mostBytes = 1 << 18;

struct Sample
{
    OIIO::ImageSpec spec; ///< without attributes
    std::vector<unsigned char> pixels;
    std::vector<unsigned char> filtered;
};

std::int64_t rowBytes(const OIIO::ImageSpec& spec)
{
    return std::int64_t{spec.width} * spec.nchannels;
}

int rowsOfPart(const OIIO::ImageSpec& spec)
{
    const std::int64_t bytes =
        std::clamp(rowBytes(spec) * spec.height / sampleShare, leastBytes, mostBytes);
    return std::max(static_cast<int>(bytes / parts / rowBytes(spec)), leastRows);
}

Sample takeSample(const OIIO::ImageBuf& image)
{
    const OIIO::ImageSpec& spec = image.spec();
    const int rows = rowsOfPart(spec);
    const auto values = static_cast<std::size_t>(rowBytes(spec));
    const auto count = static_cast<std::size_t>(rows * parts);
    Sample sample{OIIO::ImageSpec(spec.width, rows * parts, spec.nchannels, OIIO::TypeUInt8),
                  std::vector<unsigned char>(count * values),
                  std::vector<unsigned char>(count * (1 + values))};
    PngRows filter(values, static_cast<std::size_t>(spec.nchannels));
    for (std::size_t i = 0; i < count; ++i)
    {
        const int part = static_cast<int>(i) / rows;
        const int y = (spec.height / parts - rows) / 2 + spec.height / parts * part +
                      static_cast<int>(i) % rows;
        const auto* row = static_cast<const float*>(image.pixeladdr(0, y));
        roundToBytes(row, values, sample.pixels.data() + i * values);
        filter.add(row, sample.filtered.data() + i * (1 + values));
    }
    return sample;
}

/// Bytes of the packed pixels in a PNG file, for its other chunks weigh much in a small one.
std::size_t dataSize(const std::vector<unsigned char>& file)
{
    constexpr std::size_t signature = 8;
    constexpr std::size_t frame = 12;
    std::size_t sum = 0;
    for (std::size_t at = signature; at + frame <= file.size();)
    {
        const unsigned char* chunk = file.data() + at;
        const std::size_t size = std::size_t{chunk[0]} << 24U | std::size_t{chunk[1]} << 16U |
                                 std::size_t{chunk[2]} << 8U | chunk[3];
        if (std::equal(chunk + 4, chunk + 8, "IDAT"))
            sum += size;
        at += frame + size;
    }
    return sum;
}

} // namespace

int choosePngLevel(const OIIO::ImageBuf& image, int threads)
{
    const OIIO::ImageSpec& spec = image.spec();
    if (rowBytes(spec) * spec.height < smallBytes || spec.height < leastRows * parts * sampleShare)
        return smallLevel;
    const Sample sample = takeSample(image);
    std::size_t byDefault = 0;
    std::array<std::size_t, fastLevels.size()> sizes{};
    // The default is the longest, hence begun first.
    forEachTask(static_cast<int>(1 + sizes.size()), threads,
                [&](int i)
                {
                    const auto level = static_cast<std::size_t>(i - 1);
                    if (i == 0)
                        byDefault = dataSize(encodeImage("sample.png", sample.spec, OIIO::TypeUInt8,
                                                         sample.pixels.data(), 1));
                    else
                        sizes[level] = pack(sample.filtered, fastLevels[level]).size();
                });
    const auto* const found = std::ranges::find_if(
        sizes, [&](std::size_t size) { return size * 1000 <= byDefault * permilleOfDefault; });
    return found == sizes.end() ? bestLevel
                                : fastLevels[static_cast<std::size_t>(found - sizes.begin())];
}

} // namespace vyr::MaterialTranslation::baking
