#pragma once

#include "baking/kernels/Kernels.h"
#include "baking/kernels/PatternTemplates.h"

/// @file
/// The kernels for any kind L of lanes. Everything here is a template on it, and each kind of lanes is local
/// to its file, so that code compiled for one instruction set is never linked into another's place.
namespace vyr::MaterialTranslation::baking
{

// Normals from heights.

/// Length of the vector (x, y, z), z not 0, without overflow of the squares.
///
/// Standard libraries scale their three-argument hypot differently, which shows in the last bit. This one
/// is ours, so that an image does not depend on the library it was built with:
///
///     m = the largest of |x|, |y|, |z|
///     length = m * sqrt(((x / m) * (x / m) + (y / m) * (y / m)) + (z / m) * (z / m))
///
/// in 32-bit float, as GNU's library rounds it. An infinite component gives NaN, not infinity.
template <class L>
inline typename L::Floats length3(typename L::Floats x, typename L::Floats y, typename L::Floats z)
{
    using Floats = typename L::Floats;
    const Floats m = L::larger(L::larger(L::absolute(x), L::absolute(y)), L::absolute(z));
    const auto squared = [&](Floats component)
    {
        const Floats scaled = L::divide(component, m);
        return L::multiply(scaled, scaled);
    };
    const Floats squares = L::add(L::add(squared(x), squared(y)), squared(z));
    return L::multiply(m, L::squareRoot(squares));
}

/// Encoded normals of L::width pixels whose neighbours can all be read.
///
/// The Sobel weights are summed row by row. Terms of weight 0 are left out: they only count when a height is
/// not finite, and then all three components are NaN: through the gradients for the eight neighbours, and for
/// the pixel's own height, which is in neither gradient, through `poison`.
template <class L>
inline void normalPixels(const float* above, const float* centre, const float* below,
                         const SlopeStrength& strength, float* rgb)
{
    using Floats = typename L::Floats;
    const Floats a0 = L::load(above - 1);
    const Floats a1 = L::load(above);
    const Floats a2 = L::load(above + 1);
    const Floats c0 = L::load(centre - 1);
    const Floats c1 = L::load(centre);
    const Floats c2 = L::load(centre + 1);
    const Floats b0 = L::load(below - 1);
    const Floats b1 = L::load(below);
    const Floats b2 = L::load(below + 1);

    const Floats two = L::all(2.0f);
    Floats dx = L::subtract(a2, a0);
    dx = L::subtract(dx, L::multiply(two, c0));
    dx = L::add(dx, L::multiply(two, c2));
    dx = L::add(L::subtract(dx, b0), b2);
    Floats dy = L::subtract(L::multiply(L::all(-1.0f), a0), L::multiply(two, a1));
    dy = L::add(L::subtract(dy, a2), b0);
    dy = L::add(L::add(dy, L::multiply(two, b1)), b2);

    const Floats nx = L::multiply(L::all(-strength.x), dx);
    const Floats ny = L::multiply(L::all(strength.y), dy);
    const Floats nz = L::all(4.0f);

    const Floats poison = L::multiply(L::all(0.0f), c1);
    const Floats length = L::add(length3<L>(nx, ny, nz), poison);

    const Floats half = L::all(0.5f);
    const auto encode = [&](Floats n)
    { return L::add(L::multiply(L::divide(n, length), half), half); };
    L::storePixels(rgb, encode(nx), encode(ny), encode(nz));
}

/// The same for `count` pixels (at most L::width) that start at column x, with columns clamped.
template <class L>
inline void normalPixelsAtEdge(const HeightRows& heights, std::size_t width, std::size_t x,
                               std::size_t count, const SlopeStrength& strength, float* rgb)
{
    constexpr std::size_t padded = L::width + 2;
    float rows[3][padded];
    const float* const sources[3] = {heights.above, heights.centre, heights.below};
    for (std::size_t i = 0; i < padded; ++i)
    {
        const std::size_t next = x + i;
        const std::size_t column = next == 0 ? 0 : (next > width ? width - 1 : next - 1);
        for (int row = 0; row < 3; ++row)
            rows[row][i] = sources[row][column];
    }
    float pixels[3 * L::width];
    normalPixels<L>(rows[0] + 1, rows[1] + 1, rows[2] + 1, strength, pixels);
    for (std::size_t i = 0; i < 3 * count; ++i)
        rgb[i] = pixels[i];
}

template <class L>
void normalRow(const HeightRows& heights, std::size_t width, const SlopeStrength& strength,
               float* rgb)
{
    std::size_t x = 0;
    while (x < width)
    {
        if (x >= 1 && x + L::width < width)
        {
            normalPixels<L>(heights.above + x, heights.centre + x, heights.below + x, strength,
                            rgb + 3 * x);
            x += L::width;
        }
        else
        {
            const std::size_t rest = width - x;
            const std::size_t count = x == 0 ? 1 : (rest < L::width ? rest : L::width);
            normalPixelsAtEdge<L>(heights, width, x, count, strength, rgb + 3 * x);
            x += count;
        }
    }
}

// Four-dimensional gradient noise in the plane z = 0. Of the 16 corners of a lattice cell those above in z have
// fade weight 0 and are left out, and so are those above in the phase when its fraction is 0. An offset of 0 in
// z adds a zero to the products, which changes no value (only the sign of a zero, which no pixel shows).

/// One round of the corner hash.
template <class L> inline typename L::Bits mixHash(typename L::Bits h, typename L::Bits k)
{
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
template <class L>
inline void splitGradient(typename L::Bits hash, typename L::Floats dy, typename L::Floats dw,
                          float* across, float* along, float* rest)
{
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

template <class L>
void noiseGradients(const NoiseColumns& columns, const NoiseAxis& row, const NoiseAxis& phase,
                    NoiseGradients& gradients)
{
    using Bits = typename L::Bits;
    using Floats = typename L::Floats;
    const Bits zero = L::all(0U);
    const Bits rowHash[2] = {mixHash<L>(zero, L::all(row.cell)),
                             mixHash<L>(zero, L::all(row.above))};
    const Bits phaseCell[2] = {L::all(phase.cell), L::all(phase.above)};
    const Floats dw[2] = {L::all(phase.fraction), L::all(phase.fraction - 1.0f)};
    const int phases = phase.fraction == 0.0f ? 1 : 2;

    for (std::size_t i = 0; i < noiseColumns; i += L::width)
    {
        const Bits cells[2] = {L::load(columns.cell + i), L::load(columns.above + i)};
        const Floats fraction = L::load(columns.fraction + i);
        for (int corner = 0; corner < 4; ++corner)
        {
            const bool upper = (corner & 2) != 0;
            const Floats dy = upper ? L::subtract(fraction, L::all(1.0f)) : fraction;
            const Bits planeHash =
                mixHash<L>(mixHash<L>(rowHash[corner & 1], cells[corner >> 1]), zero);
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

template <class L>
inline typename L::Floats interpolate(typename L::Floats a, typename L::Floats b,
                                      typename L::Floats s)
{
    return L::add(a, L::multiply(s, L::subtract(b, a)));
}

/// The gradients at the four corners of one phase.
template <class L, bool withRest> struct CornerGradients
{
    using Floats = typename L::Floats;

    /// @param first  The first of the corners.
    CornerGradients(const NoiseGradients& gradients, int first, std::size_t i)
    {
        for (int corner = 0; corner < 4; ++corner)
        {
            across[corner] = L::load(gradients.across[first + corner] + i);
            along[corner] = L::load(gradients.along[first + corner] + i);
            if constexpr (withRest)
                rest[corner] = L::load(gradients.rest[first + corner] + i);
        }
    }

    /// Interpolated.
    Floats noise(const NoiseRow& row, Floats fadeAlong) const
    {
        const Floats dx[2] = {L::all(row.fraction), L::all(row.fraction - 1.0f)};
        Floats value[4];
        for (int corner = 0; corner < 4; ++corner)
        {
            value[corner] = L::add(L::multiply(across[corner], dx[corner & 1]), along[corner]);
            if constexpr (withRest)
                value[corner] = L::add(value[corner], rest[corner]);
        }
        const Floats fadeAcross = L::all(row.fade);
        return interpolate<L>(interpolate<L>(value[0], value[1], fadeAcross),
                              interpolate<L>(value[2], value[3], fadeAcross), fadeAlong);
    }

    Floats across[4];
    Floats along[4];
    Floats rest[4];
};

/// Rows lie in the inner loop: the gradients stay in registers.
template <class L, bool twoPhases>
inline void addNoiseOctaveOf(const NoiseGradients& gradients, const NoiseColumns& columns,
                             const NoiseOctave& octave, const NoiseRow* rows, std::size_t count,
                             float* sums)
{
    using Floats = typename L::Floats;
    const Floats scale = L::all(octave.scale);
    const Floats fadePhase = L::all(octave.phase.fade);
    const bool absolute = octave.absolute;
    for (std::size_t i = 0; i < noiseColumns; i += L::width)
    {
        const Floats fadeAlong = L::load(columns.fade + i);
        const CornerGradients<L, twoPhases> lower(gradients, 0, i);
        const CornerGradients<L, true> upper(gradients, twoPhases ? 4 : 0, i);
        for (std::size_t row = 0; row < count; ++row)
        {
            Floats noise = lower.noise(rows[row], fadeAlong);
            if constexpr (twoPhases)
                noise = interpolate<L>(noise, upper.noise(rows[row], fadeAlong), fadePhase);
            noise = L::multiply(L::multiply(noise, L::all(0.87f)), scale);
            if (absolute)
                noise = L::absolute(noise);
            float* const sum = sums + row * noiseColumns + i;
            L::store(sum, L::add(L::load(sum), noise));
        }
    }
}

template <class L>
void addNoiseOctave(const NoiseGradients& gradients, const NoiseColumns& columns,
                    const NoiseOctave& octave, const NoiseRow* rows, std::size_t count, float* sums)
{
    if (octave.phase.fraction == 0.0f)
        addNoiseOctaveOf<L, false>(gradients, columns, octave, rows, count, sums);
    else
        addNoiseOctaveOf<L, true>(gradients, columns, octave, rows, count, sums);
}

template <class L>
inline typename L::Floats noiseValue(typename L::Floats noise, const NoiseShade& shade)
{
    using Floats = typename L::Floats;
    const Floats low = L::all(shade.thresholdLow);
    const Floats high = L::all(shade.thresholdHigh);
    const Floats one = L::all(1.0f);
    const Floats v = shade.centred ? L::multiply(L::add(noise, one), L::all(0.5f)) : noise;
    const bool ramp = shade.thresholdLow != shade.thresholdHigh;
    const Floats between = ramp ? L::divide(L::subtract(v, low), L::subtract(high, low)) : v;
    return L::ifLess(v, low, L::all(0.0f), L::ifLess(high, v, one, between));
}

template <class L>
inline void shadePixels(typename L::Floats v, const NoiseShade& shade, float* pixels)
{
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

template <class L>
void shadeNoise(const float* noise, std::size_t count, const NoiseShade& shade, float* pixels)
{
    const auto channels = static_cast<std::size_t>(shade.channels);
    std::size_t i = 0;
    for (; i + L::width <= count; i += L::width)
        shadePixels<L>(noiseValue<L>(L::load(noise + i), shade), shade, pixels + channels * i);
    if (i < count)
    {
        float last[3 * L::width];
        shadePixels<L>(noiseValue<L>(L::load(noise + i), shade), shade, last);
        for (std::size_t k = 0; k < channels * (count - i); ++k)
            pixels[channels * i + k] = last[k];
    }
}

/// The kernels for one kind of lanes.
template <class L> KernelSet kernelSetOf(const char* name)
{
    KernelSet set{name,
                  normalRow<L>,
                  noiseGradients<L>,
                  addNoiseOctave<L>,
                  shadeNoise<L>,
                  shadePattern<L>,
                  decodeSrgb<L>,
                  {},
                  {}};
    setPatterns<L>(set, static_cast<PatternKinds*>(nullptr));
    return set;
}

/// Only for processors that have the instructions.
KernelSet avx2Kernels();
KernelSet avx512Kernels();

} // namespace vyr::MaterialTranslation::baking
