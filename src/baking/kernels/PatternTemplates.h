#pragma once

#include "bakes/patterns/Kinds.h"
#include "baking/kernels/Kernels.h"

/// @file
/// The kernels of the patterns, as KernelTemplates.h has those of the other bakes.
namespace vyr::MaterialTranslation::baking
{

template <class L, class Kind>
void patternRow(const void* pattern, const PatternStrip& strip, float* mix, float* factor)
{
    const Kind& kind = *static_cast<const Kind*>(pattern);
    Pixels<L> pixels{};
    pixels.y = L::all(strip.y);
    pixels.rowY = strip.y;
    pixels.sizeX = strip.sizeX;
    pixels.sizeY = strip.sizeY;
    pixels.heights = strip.heights;
    pixels.columnStride = noiseColumns;
    const auto row = [&]
    {
        if constexpr (requires { kind.template row<L>(pixels.y); })
            return kind.template row<L>(pixels.y);
        else
            return 0;
    }();
    const auto sampleOf = [&](const Pixels<L>& p)
    {
        if constexpr (requires { kind.template row<L>(pixels.y); })
            return kind.template sample<L>(p, row);
        else
            return kind.template sample<L>(p);
    };
    for (std::size_t i = 0; i < noiseColumns; i += L::width)
    {
        pixels.x = L::load(strip.x + i);
        pixels.firstX = strip.x[i];
        pixels.lastX = strip.x[i + L::width - 1];
        pixels.columns = strip.columns ? strip.columns + i : nullptr;
        for (std::size_t layer = 0; layer < mostNoiseLayers; ++layer)
            if (strip.noise[layer])
                pixels.noise[layer] = L::load(strip.noise[layer] + i);
        const Sample<L> sample = sampleOf(pixels);
        L::store(mix + i, sample.mix);
        L::store(factor + i, sample.factor);
    }
}

/// @param values  Gets them after those that it has.
template <class L, class Kind>
void patternColumns(const void* pattern, const float* x, std::vector<float>& values)
{
    if constexpr (requires(const Kind& kind) { kind.columnValues(); })
    {
        const Kind& kind = *static_cast<const Kind*>(pattern);
        for (std::size_t value = 0; value < kind.columnValues(); ++value)
        {
            const std::size_t begin = values.size();
            values.resize(begin + noiseColumns);
            for (std::size_t i = 0; i < noiseColumns; i += L::width)
                L::store(values.data() + begin + i,
                         kind.template columnValue<L>(value, L::load(x + i)));
        }
    }
}

template <class L, class... Kind>
void setPatterns(KernelSet& set, const std::tuple<Kind...>* /*kinds*/)
{
    std::size_t i = 0;
    ((set.patternColumns[i] = patternColumns<L, Kind>, set.patternRows[i++] = patternRow<L, Kind>),
     ...);
}

/// How far a place on a ramp is on its way between two stops.
template <class L>
typename L::Floats wayBetween(const ColorStop& from, const ColorStop& to, RampStep step,
                              typename L::Floats t)
{
    using M = Math<L>;
    if (step == RampStep::Constant || !(from.position < to.position))
        return M::less(t, to.position, M::all(0.0f), M::all(1.0f));
    const auto way =
        M::clamp01(M::div(M::sub(t, from.position), M::all(to.position - from.position)));
    return step == RampStep::Smooth ? M::smooth(way) : way;
}

/// The first `channels` values of a colour at some pixels.
template <class L, std::size_t channels>
using Colors = std::array<typename L::Floats, channels>;

template <class L, std::size_t channels>
Colors<L, channels> rampColors(typename L::Floats t, const PatternShade& shade)
{
    using M = Math<L>;
    Colors<L, channels> colors;
    for (std::size_t c = 0; c < channels; ++c)
        colors[c] = M::all(shade.stops[0].color[c]);
    for (std::size_t i = 0; i + 1 < shade.stopCount; ++i)
    {
        const auto way = wayBetween<L>(shade.stops[i], shade.stops[i + 1], shade.step, t);
        for (std::size_t c = 0; c < channels; ++c)
            colors[c] = M::mix(colors[c], M::all(shade.stops[i + 1].color[c]), way);
    }
    return colors;
}

/// @param at  The first of the pixels, for values in place of colours.
template <class L, std::size_t channels>
Colors<L, channels> mixedColors(typename L::Floats mix, typename L::Floats factor,
                                const PatternShade& shade, std::size_t at)
{
    using M = Math<L>;
    Colors<L, channels> colors;
    for (std::size_t c = 0; c < channels; ++c)
    {
        const auto color = [&](int which)
        {
            const float* const own = shade.pixels[which][c];
            return own ? L::load(own + at) : M::all(shade.colors[which][c]);
        };
        colors[c] = M::mix(M::mul(color(0), factor), color(1), mix);
    }
    return colors;
}

template <class L, std::size_t channels, bool isRamp, bool isCoded>
void shadePixelsOf(const float* mix, const float* factor, std::size_t count,
                   const PatternShade& given, float* pixels)
{
    const PatternShade shade = given; // which no pixel can change
    for (std::size_t i = 0; i < count; i += L::width)
    {
        Colors<L, channels> colors;
        if constexpr (isRamp)
            colors = rampColors<L, channels>(L::load(mix + i), shade);
        else
            colors = mixedColors<L, channels>(L::load(mix + i), L::load(factor + i), shade, i);
        if constexpr (isCoded)
            for (auto& color : colors)
                color = Math<L>::srgbCode(color);
        float last[3 * L::width];
        float* const target = count - i < L::width ? last : pixels + channels * i;
        if constexpr (channels == 1)
            L::store(target, colors[0]);
        else
            L::storePixels(target, colors[0], colors[1], colors[2]);
        if (target == last)
            for (std::size_t k = 0; k < channels * (count - i); ++k)
                pixels[channels * i + k] = last[k];
    }
}

template <class L>
void shadePattern(const float* mix, const float* factor, std::size_t count,
                  const PatternShade& shade, float* pixels)
{
    const auto shadeOne = [&]<std::size_t channels, bool isCoded>()
    {
        if (shade.stops)
            shadePixelsOf<L, channels, true, isCoded>(mix, factor, count, shade, pixels);
        else
            shadePixelsOf<L, channels, false, isCoded>(mix, factor, count, shade, pixels);
    };
    if (shade.channels == 1)
        shadeOne.template operator()<1, false>();
    else if (shade.srgb)
        shadeOne.template operator()<3, true>();
    else
        shadeOne.template operator()<3, false>();
}

template <class L> void decodeSrgb(float* values, std::size_t count)
{
    std::size_t i = 0;
    for (; i + L::width <= count; i += L::width)
        L::store(values + i, Math<L>::srgbValue(L::load(values + i)));
    float last[L::width] = {};
    for (std::size_t k = 0; i + k < count; ++k)
        last[k] = values[i + k];
    L::store(last, Math<L>::srgbValue(L::load(last)));
    for (std::size_t k = 0; i + k < count; ++k)
        values[i + k] = last[k];
}

} // namespace vyr::MaterialTranslation::baking
