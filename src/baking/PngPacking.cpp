#include "baking/PngPacking.h"

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

/// Many strips for many threads, each many times as long as what deflate looks back at.
constexpr std::size_t usualStrip = std::size_t{1} << 19;

/// Of the same filter for all rows only those that were ever better than one chosen row by row.
constexpr std::array filters{PngFilter::Best, PngFilter::Above, PngFilter::Average};

/// How small the sample by one filter has to be beside the one by a filter chosen row by row.
constexpr std::size_t permilleOfBest = 985;

/// A level, and how large its sample may be beside that of the default settings. Without the little more, noise
/// that no level packs would take the longest.
struct Level
{
    int level;
    std::size_t permilleOfDefault;
};

/// Fastest first. All filters are tried at the first one, and the best of them at the others. The one behind the
/// last takes twice as long.
constexpr std::array levels{Level{1, 1008}, Level{2, 1008}, Level{3, 1008},
                            Level{4, 1008}, Level{5, 1008}, Level{6, 1016}};
/// Levels that are tried at once; the one that is looked for is rarely the last.
constexpr std::size_t atOnce = 2;

/// For what none of them packs well enough: it beat the default on every picture that was tried.
constexpr int bestLevel = 7;

/// For pictures that pack to less than a hundredth. The beginnings of strips would be a part of their size, and
/// all levels are fast.
constexpr PngPacking plainPacking{PngFilter::Best, bestLevel, 8 * usualStrip};
constexpr std::size_t plainShare = 100;

/// For small pictures, where a sample would cost as much as it saves.
constexpr PngPacking smallPacking{PngFilter::Best, 6, usualStrip};
constexpr std::int64_t smallBytes = 1 << 19;
constexpr int leastHeight = 256;

/// The sample: a few parts of rows spread over the picture. Each is longer than what deflate looks back at where
/// the picture is large, or slow levels would seem to gain less than they do.
constexpr int parts = 4;
/// Where each lies in its part of the picture: not at equal distances, at which many pictures repeat.
constexpr std::array<int, parts> eighths{1, 6, 3, 5};
constexpr int leastRows = 3;
constexpr int sampleShare = 48;
constexpr std::int64_t leastBytes = 1 << 16;
constexpr std::int64_t mostBytes = 1 << 19;

using Bytes = std::vector<unsigned char>;

struct Sample
{
    OIIO::ImageSpec spec; ///< without attributes
    Bytes pixels;
    Bytes joined; ///< filtered row by row as one image, which is what the image library gets
    std::array<Bytes, filters.size()>
        filtered; ///< each row beside the one above it in the whole picture
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
    const auto channels = static_cast<std::size_t>(spec.nchannels);
    const auto count = static_cast<std::size_t>(rows * parts);
    const auto row = [&](int y) { return static_cast<const float*>(image.pixeladdr(0, y)); };
    Sample sample{OIIO::ImageSpec(spec.width, rows * parts, spec.nchannels, OIIO::TypeUInt8),
                  Bytes(count * values),
                  Bytes(count * (1 + values)),
                  {}};
    sample.filtered.fill(sample.joined);
    PngRows joined(values, channels, PngFilter::Best);
    std::size_t i = 0;
    for (int part = 0; part < parts; ++part)
    {
        const int begin = spec.height / parts * part + (spec.height / parts - rows) *
                                                           eighths[static_cast<std::size_t>(part)] /
                                                           8;
        std::vector<PngRows> apart;
        for (const PngFilter filter : filters)
            apart.emplace_back(values, channels, filter).setAbove(row(begin - 1));
        for (int y = begin; y < begin + rows; ++y, ++i)
        {
            roundToBytes(row(y), values, sample.pixels.data() + i * values);
            joined.add(row(y), sample.joined.data() + i * (1 + values));
            for (std::size_t filter = 0; filter < filters.size(); ++filter)
                apart[filter].add(row(y), sample.filtered[filter].data() + i * (1 + values));
        }
    }
    return sample;
}

/// Bytes of the packed pixels in a PNG file, for its other chunks weigh much in a small one.
std::size_t dataSize(const Bytes& file)
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

PngPacking choosePngPacking(const OIIO::ImageBuf& image, int threads)
{
    const OIIO::ImageSpec& spec = image.spec();
    if (rowBytes(spec) * spec.height < smallBytes || spec.height < leastHeight)
        return smallPacking;
    const Sample sample = takeSample(image);
    std::size_t byDefault = 0;
    std::size_t joined = 0;
    std::array<std::size_t, filters.size()> byFilter{};
    const int first = levels.front().level;
    // The default is the longest, hence begun first.
    forEachTask(static_cast<int>(2 + filters.size()), threads,
                [&](int task)
                {
                    if (task == 0)
                        byDefault = dataSize(encodeImage("sample.png", sample.spec, OIIO::TypeUInt8,
                                                         sample.pixels.data(), 1));
                    else if (task == 1)
                        joined = pack(sample.joined, first).size();
                    else
                        byFilter[static_cast<std::size_t>(task - 2)] =
                            pack(sample.filtered[static_cast<std::size_t>(task - 2)], first).size();
                });
    if (byDefault * plainShare < sample.pixels.size())
        return plainPacking;
    // The image library's has seams between the parts, whose bytes are packed about as badly at any level.
    byDefault -= std::min(byDefault, joined - std::min(joined, byFilter.front()));
    // The sample of one filter says less than that of a choice row by row.
    std::size_t filter = 0;
    for (std::size_t i = 1; i < filters.size(); ++i)
        if (byFilter[i] * 1000 < std::min(byFilter[0] * permilleOfBest, byFilter[filter] * 1000))
            filter = i;

    std::array<std::size_t, levels.size()> byLevel{byFilter[filter]};
    std::size_t known = 1;
    for (std::size_t i = 0; i < levels.size(); ++i)
    {
        if (i == known)
        {
            known = std::min(i + atOnce, levels.size());
            forEachTask(static_cast<int>(known - i), threads,
                        [&](int task)
                        {
                            const std::size_t tried = known - 1 - static_cast<std::size_t>(task);
                            byLevel[tried] =
                                pack(sample.filtered[filter], levels[tried].level).size();
                        });
        }
        if (byLevel[i] * 1000 <= byDefault * levels[i].permilleOfDefault)
            return {filters[filter], levels[i].level, usualStrip};
    }
    return {filters[filter], bestLevel, usualStrip};
}

} // namespace vyr::MaterialTranslation::baking
