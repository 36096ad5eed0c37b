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
    kPaeth = 0x80,
};

struct PngSetting
{
    const char* strategy; ///< null: the library's own choice
    int level;            ///< 1 to 9
    int filter;
};

/// Fastest first: for photographs and noise, for smooth and flat pictures, and for patterns, where only a
/// search for repetitions packs well.
constexpr PngSetting kFastSettings[] = {
    {"huffman", 6, kAverage}, {"huffman", 6, kPaeth}, {"rle", 6, kPaeth},
    {nullptr, 4, kUp},        {nullptr, 5, kUp},      {nullptr, 6, kNone},
};

/// The sample: strips of rows spread over the picture, each long enough for what filters and packing look
/// back at, together few enough to cost little beside the whole.
constexpr std::ptrdiff_t kMostStrips = 8;
constexpr std::ptrdiff_t kStripRows = 4;
constexpr std::ptrdiff_t kSampleShare = 16;
constexpr std::ptrdiff_t kSamplePixels = 1 << 17;

/// How much larger than with the default setting the sample may be. What the default cannot pack well is
/// large, so little is given away there; what it packs well is small either way.
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
    return encodeImage("image.png", spec, OIIO::TypeUInt8, pixels);
}

struct Sample
{
    OIIO::ImageSpec spec;
    std::vector<unsigned char> pixels;
};

/// Empty when the picture is so small that choosing is not worth it.
Sample sampleOf(const unsigned char* pixels, const OIIO::ImageSpec& spec)
{
    const std::ptrdiff_t sampled =
        std::min<std::ptrdiff_t>(kSamplePixels / spec.width, spec.height / kSampleShare);
    const std::ptrdiff_t strips = std::min(sampled / kStripRows, kMostStrips);
    if (strips == 0)
    {
        return {};
    }
    const std::ptrdiff_t rows = sampled / strips;
    Sample sample{spec, {}};
    sample.spec.height = sample.spec.full_height = static_cast<int>(rows * strips);
    const std::ptrdiff_t rowBytes = static_cast<std::ptrdiff_t>(spec.width) * spec.nchannels;
    for (std::ptrdiff_t strip = 0; strip < strips; ++strip)
    {
        const std::ptrdiff_t y = (spec.height - rows) * (2 * strip + 1) / (2 * strips);
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
