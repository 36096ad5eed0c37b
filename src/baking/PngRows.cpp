#include "baking/PngRows.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <utility>

namespace vyr::MaterialTranslation::baking
{

namespace
{

/// Room in front of a row, for the largest pixel.
constexpr std::size_t margin = 4;

/// Bytes between two additions to the sums, few enough that their parts fit into 16 bits.
constexpr std::size_t sumBlock = 256;

/// What a filter looks at: the byte, and those to the left, above, and above to the left.
struct Near
{
    const unsigned char* byte;
    const unsigned char* left;
    const unsigned char* above;
    const unsigned char* corner;
};

using Predict = int (*)(int left, int above, int corner);

constexpr int nothing(int, int, int)
{
    return 0;
}

constexpr int sub(int left, int, int)
{
    return left;
}

constexpr int up(int, int above, int)
{
    return above;
}

constexpr int average(int left, int above, int)
{
    return (left + above) / 2;
}

/// Written so that compilers turn it into vector code.
inline int paeth(int left, int above, int corner)
{
    const auto toLeft = static_cast<short>(std::abs(above - corner));
    const auto toAbove = static_cast<short>(std::abs(left - corner));
    const auto toCorner = static_cast<short>(std::abs(left + above - 2 * corner));
    const int other = toAbove <= toCorner ? above : corner;
    return toLeft <= toAbove && toLeft <= toCorner ? left : other;
}

template <Predict predict> unsigned char filtered(Near near, std::size_t i)
{
    return static_cast<unsigned char>(near.byte[i] -
                                      predict(near.left[i], near.above[i], near.corner[i]));
}

/// The sum of the filtered bytes, taken as signed, without their signs: the lower, the better a row packs as a
/// rule.
template <Predict predict> std::size_t cost(Near near, std::size_t count)
{
    std::size_t sum = 0;
    for (std::size_t begin = 0; begin < count; begin += sumBlock)
    {
        const std::size_t end = std::min(begin + sumBlock, count);
        unsigned short part = 0;
        for (std::size_t i = begin; i < end; ++i)
        {
            const unsigned char value = filtered<predict>(near, i);
            const auto negative = static_cast<unsigned char>(0 - value);
            part = static_cast<unsigned short>(part + std::min(value, negative));
        }
        sum += part;
    }
    return sum;
}

template <Predict predict> void filter(Near near, std::size_t count, unsigned char* to)
{
    for (std::size_t i = 0; i < count; ++i)
        to[i] = filtered<predict>(near, i);
}

/// The bits of value * 255 within 0 and 255, and those of 0 for what is no number. Positive floats are in the
/// order of their bits, and compilers make vector code only of comparisons of integers.
inline std::int32_t scaledBits(float value)
{
    constexpr auto infinite = std::bit_cast<std::int32_t>(std::numeric_limits<float>::infinity());
    constexpr auto most = std::bit_cast<std::int32_t>(255.0f);
    auto bits = std::bit_cast<std::int32_t>(value * 255.0f);
    bits = bits > infinite ? 0 : bits;
    bits = bits < 0 ? 0 : bits;
    return bits > most ? most : bits;
}

inline unsigned char roundedHalfUp(std::int32_t bits)
{
    const auto value = std::bit_cast<float>(bits);
    const int whole = static_cast<int>(value);
    const float rest = value - static_cast<float>(whole);
    return static_cast<unsigned char>(whole + static_cast<int>(rest + rest));
}

struct Filter
{
    std::size_t (*cost)(Near near, std::size_t count);
    void (*apply)(Near near, std::size_t count, unsigned char* to);
};

template <Predict predict> constexpr Filter filterOf{cost<predict>, filter<predict>};

/// In the order of their numbers.
constexpr std::array filters{filterOf<nothing>, filterOf<sub>, filterOf<up>, filterOf<average>,
                             filterOf<paeth>};

std::size_t bestFilter(Near near, std::size_t count)
{
    std::array<std::size_t, filters.size()> costs{};
    std::ranges::transform(filters, costs.begin(),
                           [&](const Filter& filter) { return filter.cost(near, count); });
    return static_cast<std::size_t>(std::ranges::min_element(costs) - costs.begin());
}

} // namespace

void roundToBytes(const float* values, std::size_t count, unsigned char* bytes)
{
    // Two loops, for as one they are no vector code.
    std::array<std::int32_t, 256> scaled;
    for (std::size_t begin = 0; begin < count; begin += scaled.size())
    {
        const std::size_t block = std::min(scaled.size(), count - begin);
        for (std::size_t i = 0; i < block; ++i)
            scaled[i] = scaledBits(values[begin + i]);
        for (std::size_t i = 0; i < block; ++i)
            bytes[begin + i] = roundedHalfUp(scaled[i]);
    }
}

PngRows::PngRows(std::size_t values, std::size_t channels, PngFilter filter)
    : _values(values), _channels(channels), _filter(filter), _row(margin + values),
      _above(margin + values)
{
}

void PngRows::setAbove(const float* row)
{
    roundToBytes(row, _values, _above.data() + margin);
    _hasAbove = true;
}

void PngRows::add(const float* row, unsigned char* to)
{
    roundToBytes(row, _values, _row.data() + margin);
    const Near near{_row.data() + margin, _row.data() + margin - _channels, _above.data() + margin,
                    _above.data() + margin - _channels};
    const std::size_t number = _hasAbove && _filter != PngFilter::Best
                                   ? static_cast<std::size_t>(_filter)
                                   : bestFilter(near, _values);
    to[0] = static_cast<unsigned char>(number);
    filters[number].apply(near, _values, to + 1);
    std::swap(_row, _above);
    _hasAbove = true;
}

} // namespace vyr::MaterialTranslation::baking
