#pragma once

#include "baking/kernels/Kernels.h"

/// @file
/// Four-dimensional gradient noise in the plane z = 0, for any kind of lanes. Everything here is a template
/// on the lanes, so that code compiled for one instruction set is never linked into another's place.
///
/// Of the 16 corners of a lattice cell those above in z have fade weight 0 and are left out, and so are those
/// above in the phase when its fraction is 0. An offset of 0 in z adds a zero to the products, which changes
/// no value (only the sign of a zero, which no pixel shows).
namespace vyr::MaterialTranslation::baking
{
/// One round of the corner hash.
template <class Lanes> inline typename Lanes::Bits mixHash(typename Lanes::Bits h,
                                                           typename Lanes::Bits k)
{
    using L = Lanes;
    h = L::add(h, k);
    h = L::add(L::template shiftLeft<10>(h), h);
    h = L::exclusiveOr(h, L::template shiftRight<6>(h));
    h = L::add(L::template shiftLeft<3>(h), h);
    h = L::exclusiveOr(h, L::template shiftRight<11>(h));
    return L::add(L::template shiftLeft<15>(h), h);
}

/// Splits the product of gradient and offset at one corner, given the low bits of its hash. With u, v, t the
/// three signed offsets that the gradient picks from x (across), y (along), z and w (phase):
/// bits 3 and 4 both set: u = y; bit 4 not set: v = y; neither bit set: t = z.
template <class Lanes>
inline void splitGradient(typename Lanes::Bits hash, typename Lanes::Floats dy,
                          typename Lanes::Floats dw, float* across, float* along, float* rest)
{
    using L = Lanes;
    using Bits = typename L::Bits;
    const Bits sign0 = L::template shiftLeft<31>(hash);
    const Bits sign1 = L::template shiftLeft<30>(L::both(hash, L::all(2U)));
    const Bits sign2 = L::template shiftLeft<29>(L::both(hash, L::all(4U)));
    const Bits bit3 = L::template spreadBit<3>(hash);
    const Bits bit4 = L::template spreadBit<4>(hash);
    const Bits firstIsAlong = L::both(bit3, bit4);
    const Bits one = L::bits(L::all(1.0f));

    const Bits alongSign = L::either(L::both(sign0, firstIsAlong), L::butNot(sign1, firstIsAlong));
    const Bits alongUnused = L::butNot(bit4, bit3);
    L::store(across, L::floats(L::butNot(L::exclusiveOr(one, sign0), firstIsAlong)));
    L::store(along, L::floats(L::butNot(L::exclusiveOr(L::bits(dy), alongSign), alongUnused)));
    L::store(rest, L::floats(L::both(L::exclusiveOr(L::bits(dw), sign2), L::either(bit3, bit4))));
}

template <class Lanes>
void noiseGradients(const NoiseColumns& columns, std::uint32_t row, const NoiseAxis& phase,
                    NoiseGradients& gradients)
{
    using L = Lanes;
    using Bits = typename L::Bits;
    using Floats = typename L::Floats;
    const Bits zero = L::all(0U);
    const Bits rowHash[2] = {mixHash<L>(zero, L::all(row)), mixHash<L>(zero, L::all(row + 1U))};
    const Bits phaseCell[2] = {L::all(phase.cell), L::all(phase.cell + 1U)};
    const Floats dw[2] = {L::all(phase.fraction), L::all(phase.fraction - 1.0f)};
    const int phases = phase.fraction == 0.0f ? 1 : 2;

    for (std::size_t i = 0; i < kNoiseColumns; i += L::kWidth)
    {
        const Bits cell = L::load(columns.cell + i);
        const Floats fraction = L::load(columns.fraction + i);
        for (int corner = 0; corner < 4; ++corner)
        {
            const bool upper = (corner & 2) != 0;
            const Floats dy = upper ? L::subtract(fraction, L::all(1.0f)) : fraction;
            const Bits alongCell = upper ? L::add(cell, L::all(1U)) : cell;
            const Bits planeHash = mixHash<L>(mixHash<L>(rowHash[corner & 1], alongCell), zero);
            for (int w = 0; w < phases; ++w)
            {
                const int c = corner + 4 * w;
                splitGradient<L>(mixHash<L>(planeHash, phaseCell[w]), dy, dw[w],
                                 gradients.across[c] + i, gradients.along[c] + i,
                                 gradients.rest[c] + i);
            }
        }
    }
}

template <class Lanes>
inline typename Lanes::Floats interpolate(typename Lanes::Floats a, typename Lanes::Floats b,
                                          typename Lanes::Floats s)
{
    return Lanes::add(a, Lanes::multiply(s, Lanes::subtract(b, a)));
}

/// Interpolates the four corners of one phase, starting with corner `first`.
template <class Lanes, bool kWithRest>
inline typename Lanes::Floats noisePlane(const NoiseGradients& gradients, int first, std::size_t i,
                                         const NoiseOctaveRow& row,
                                         typename Lanes::Floats fadeAlong)
{
    using L = Lanes;
    using Floats = typename L::Floats;
    const Floats dx[2] = {L::all(row.fraction), L::all(row.fraction - 1.0f)};
    Floats value[4];
    for (int corner = 0; corner < 4; ++corner)
    {
        const int c = first + corner;
        const Floats across = L::multiply(L::load(gradients.across[c] + i), dx[corner & 1]);
        value[corner] = L::add(across, L::load(gradients.along[c] + i));
        if constexpr (kWithRest)
        {
            value[corner] = L::add(value[corner], L::load(gradients.rest[c] + i));
        }
    }
    const Floats fadeAcross = L::all(row.fade);
    return interpolate<L>(interpolate<L>(value[0], value[1], fadeAcross),
                          interpolate<L>(value[2], value[3], fadeAcross), fadeAlong);
}

template <class Lanes, bool kTwoPhases>
inline void addNoiseOctaveOf(const NoiseGradients& gradients, const NoiseColumns& columns,
                             const NoiseOctaveRow& row, float* sums)
{
    using L = Lanes;
    using Floats = typename L::Floats;
    for (std::size_t i = 0; i < kNoiseColumns; i += L::kWidth)
    {
        const Floats fadeAlong = L::load(columns.fade + i);
        Floats noise = noisePlane<L, kTwoPhases>(gradients, 0, i, row, fadeAlong);
        if constexpr (kTwoPhases)
        {
            const Floats upper = noisePlane<L, true>(gradients, 4, i, row, fadeAlong);
            noise = interpolate<L>(noise, upper, L::all(row.phase.fade));
        }
        noise = L::multiply(L::multiply(noise, L::all(0.87f)), L::all(row.scale));
        if (row.absolute)
        {
            noise = L::absolute(noise);
        }
        L::store(sums + i, L::add(L::load(sums + i), noise));
    }
}

template <class Lanes>
void addNoiseOctave(const NoiseGradients& gradients, const NoiseColumns& columns,
                    const NoiseOctaveRow& row, float* sums)
{
    if (row.phase.fraction == 0.0f)
    {
        addNoiseOctaveOf<Lanes, false>(gradients, columns, row, sums);
    }
    else
    {
        addNoiseOctaveOf<Lanes, true>(gradients, columns, row, sums);
    }
}

template <class Lanes>
inline typename Lanes::Floats noiseValue(typename Lanes::Floats noise, const NoiseShade& shade)
{
    using L = Lanes;
    using Floats = typename L::Floats;
    const Floats low = L::all(shade.thresholdLow);
    const Floats high = L::all(shade.thresholdHigh);
    const Floats one = L::all(1.0f);
    const Floats v = shade.centred ? L::multiply(L::add(noise, one), L::all(0.5f)) : noise;
    const bool ramp = shade.thresholdLow != shade.thresholdHigh;
    const Floats between = ramp ? L::divide(L::subtract(v, low), L::subtract(high, low)) : v;
    return L::ifLess(v, low, L::all(0.0f), L::ifLess(high, v, one, between));
}

template <class Lanes>
inline void shadePixels(typename Lanes::Floats v, const NoiseShade& shade, float* pixels)
{
    using L = Lanes;
    if (shade.channels == 1)
    {
        L::store(pixels, v);
        return;
    }
    const auto rest = L::subtract(L::all(1.0f), v);
    const auto blend = [&](int c)
    {
        return L::add(L::multiply(L::all(shade.color1[c]), rest),
                      L::multiply(L::all(shade.color2[c]), v));
    };
    L::storePixels(pixels, blend(0), blend(1), blend(2));
}

template <class Lanes>
void shadeNoise(const float* noise, std::size_t count, const NoiseShade& shade, float* pixels)
{
    using L = Lanes;
    const auto channels = static_cast<std::size_t>(shade.channels);
    std::size_t i = 0;
    for (; i + L::kWidth <= count; i += L::kWidth)
    {
        shadePixels<L>(noiseValue<L>(L::load(noise + i), shade), shade, pixels + channels * i);
    }
    if (i < count)
    {
        float last[3 * L::kWidth];
        shadePixels<L>(noiseValue<L>(L::load(noise + i), shade), shade, last);
        for (std::size_t k = 0; k < channels * (count - i); ++k)
        {
            pixels[channels * i + k] = last[k];
        }
    }
}
} // namespace vyr::MaterialTranslation::baking
