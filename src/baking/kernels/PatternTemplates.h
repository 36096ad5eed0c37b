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
    Pixels<L> pixels{L::all(0.0f), L::all(strip.y), 0.0f,          0.0f, strip.y,
                     strip.sizeX,  strip.sizeY,     strip.heights, {}};
    for (std::size_t i = 0; i < noiseColumns; i += L::width)
    {
        pixels.x = L::load(strip.x + i);
        pixels.firstX = strip.x[i];
        pixels.lastX = strip.x[i + L::width - 1];
        for (std::size_t layer = 0; layer < mostNoiseLayers; ++layer)
            if (strip.noise[layer])
                pixels.noise[layer] = L::load(strip.noise[layer] + i);
        const Sample<L> sample = kind.template sample<L>(pixels);
        L::store(mix + i, sample.mix);
        L::store(factor + i, sample.factor);
    }
}

template <class L, class... Kind>
void setPatternRows(KernelSet& set, const std::tuple<Kind...>* /*kinds*/)
{
    std::size_t i = 0;
    ((set.patternRows[i++] = patternRow<L, Kind>), ...);
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

template <class L>
typename L::Floats rampColor(typename L::Floats t, const PatternShade& shade, int channel)
{
    using M = Math<L>;
    auto color = M::all(shade.stops[0].color[channel]);
    for (std::size_t i = 0; i + 1 < shade.stopCount; ++i)
        color = M::mix(color, M::all(shade.stops[i + 1].color[channel]),
                       wayBetween<L>(shade.stops[i], shade.stops[i + 1], shade.step, t));
    return color;
}

template <class L>
void shadePattern(const float* mix, const float* factor, std::size_t count,
                  const PatternShade& shade, float* pixels)
{
    using M = Math<L>;
    const auto channels = static_cast<std::size_t>(shade.channels);
    for (std::size_t i = 0; i < count; i += L::width)
    {
        const auto share = L::load(mix + i);
        const auto value = [&](int channel)
        {
            if (shade.stops)
                return rampColor<L>(share, shade, channel);
            const auto color = [&](int which)
            {
                const float* const own = shade.pixels[which][channel];
                return own ? L::load(own + i) : M::all(shade.colors[which][channel]);
            };
            return M::mix(M::mul(color(0), L::load(factor + i)), color(1), share);
        };
        const auto coded = [&](int channel)
        { return shade.srgb ? M::srgbCode(value(channel)) : value(channel); };
        float last[3 * L::width];
        float* const target = count - i < L::width ? last : pixels + channels * i;
        if (channels == 1)
            L::store(target, coded(0));
        else
            L::storePixels(target, coded(0), coded(1), coded(2));
        if (target == last)
            for (std::size_t k = 0; k < channels * (count - i); ++k)
                pixels[channels * i + k] = last[k];
    }
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
