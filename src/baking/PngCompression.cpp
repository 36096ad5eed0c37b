#include "baking/PngCompression.h"

#include "baking/ImageFile.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace vyr::MaterialTranslation::baking
{
namespace
{
/// Bits of the format's row filters.
enum Filter : int
{
    kNone = 0x08,
    kUp = 0x20,
    kAverage = 0x40,
};

struct PngSetting
{
    const char* strategy; ///< null: the library's own choice
    int level;            ///< 1 to 9
    int filter;
};

/// Fastest first. The first two are for photographs and noise, the third for smooth and flat pictures, the last
/// two for patterns, where only a search for repetitions packs well.
constexpr PngSetting kFastSettings[] = {
    {"huffman", 6, kAverage}, {"rle", 6, kAverage}, {"rle", 6, kUp},
    {nullptr, 4, kUp},        {nullptr, 4, kNone},
};

/// Strips of rows spread over the picture: long enough for what filters and packing look back at, and in all
/// at most a 32nd of the rows.
constexpr int kStrips = 4;
constexpr std::ptrdiff_t kSamplePixels = 1 << 17;
constexpr int kSampleShare = 32;

/// How much larger than with the default setting the sample may be. What the default cannot pack well is large, so
/// little is given away there; what it packs well is small either way.
constexpr std::size_t kWellPacked = 8; ///< to less than one in so many bytes
constexpr std::size_t kPercentOfLarge = 103;
constexpr std::size_t kPercentOfSmall = 120;

std::vector<unsigned char> encodeWith(const unsigned char* pixels, OIIO::ImageSpec spec,
                                      const PngSetting* setting)
{
    spec.set_format(OIIO::TypeUInt8);
    if (setting != nullptr)
    {
        spec.attribute("png:compressionLevel", setting->level);
        spec.attribute("png:filter", setting->filter);
        if (setting->strategy != nullptr)
        {
            spec.attribute("compression", setting->strategy);
        }
    }
    return encodeImage("png", spec, OIIO::TypeUInt8, pixels);
}

struct Sample
{
    OIIO::ImageSpec spec;
    std::vector<unsigned char> pixels;
};

Sample sampleOf(const unsigned char* pixels, const OIIO::ImageSpec& spec)
{
    const std::ptrdiff_t rows =
        std::min<std::ptrdiff_t>(kSamplePixels / spec.width, spec.height / kSampleShare) / kStrips;
    if (rows == 0)
    {
        return {};
    }
    Sample sample{spec, {}};
    sample.spec.height = sample.spec.full_height = static_cast<int>(rows * kStrips);
    const std::ptrdiff_t rowBytes = static_cast<std::ptrdiff_t>(spec.width) * spec.nchannels;
    for (std::ptrdiff_t strip = 0; strip < kStrips; ++strip)
    {
        const std::ptrdiff_t y = (spec.height - rows) * (2 * strip + 1) / (2 * kStrips);
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
    {
        return nullptr;
    }
    const auto packed = [&](const PngSetting* setting)
    { return encodeWith(sample.pixels.data(), sample.spec, setting).size(); };
    const std::size_t byDefault = packed(nullptr);
    const bool small = byDefault * kWellPacked < sample.pixels.size();
    const std::size_t limit = byDefault * (small ? kPercentOfSmall : kPercentOfLarge) / 100;
    for (const PngSetting& setting : kFastSettings)
    {
        if (packed(&setting) <= limit)
        {
            return &setting;
        }
    }
    return nullptr;
}
} // namespace

std::vector<unsigned char> encodePng(const unsigned char* pixels, const OIIO::ImageSpec& spec)
{
    return encodeWith(pixels, spec, chooseSetting(pixels, spec));
}
} // namespace vyr::MaterialTranslation::baking
