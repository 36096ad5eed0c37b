#pragma once

#include "baking/kernels/Kernels.h"

/// @file
/// Normals from heights, for any kind of lanes. Everything here is a template on the lanes, so that code
/// compiled for one instruction set is never linked into another's place.
namespace vyr::MaterialTranslation::baking
{
/// Length of the vector (x, y, z), z not 0, without overflow of the squares.
///
/// Standard libraries scale their three-argument hypot differently, which shows in the last bit. This one
/// is ours, so that an image does not depend on the library it was built with:
///
///     m = the largest of |x|, |y|, |z|
///     length = m * sqrt(((x / m) * (x / m) + (y / m) * (y / m)) + (z / m) * (z / m))
///
/// in 32-bit float, as GNU's library rounds it. An infinite component gives NaN, not infinity.
template <class Lanes>
inline typename Lanes::Floats length3(typename Lanes::Floats x, typename Lanes::Floats y,
                                      typename Lanes::Floats z)
{
    using L = Lanes;
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

/// Encoded normals of Lanes::kWidth pixels whose neighbours can all be read.
///
/// The Sobel weights are summed row by row. Terms of weight 0 are left out: they only count when a height is
/// not finite, and then all three components are NaN: through the gradients for the eight neighbours, and for
/// the pixel's own height, which is in neither gradient, through `poison`.
template <class Lanes>
inline void normalPixels(const float* above, const float* centre, const float* below,
                         const SlopeStrength& strength, float* rgb)
{
    using L = Lanes;
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

/// The same for `count` pixels (at most Lanes::kWidth) that start at column x, with columns clamped.
template <class Lanes>
inline void normalPixelsAtEdge(const HeightRows& heights, std::size_t width, std::size_t x,
                               std::size_t count, const SlopeStrength& strength, float* rgb)
{
    constexpr std::size_t kPadded = Lanes::kWidth + 2;
    float rows[3][kPadded];
    const float* const sources[3] = {heights.above, heights.centre, heights.below};
    for (std::size_t i = 0; i < kPadded; ++i)
    {
        const std::size_t next = x + i;
        const std::size_t column = next == 0 ? 0 : (next > width ? width - 1 : next - 1);
        for (int row = 0; row < 3; ++row)
        {
            rows[row][i] = sources[row][column];
        }
    }
    float pixels[3 * Lanes::kWidth];
    normalPixels<Lanes>(rows[0] + 1, rows[1] + 1, rows[2] + 1, strength, pixels);
    for (std::size_t i = 0; i < 3 * count; ++i)
    {
        rgb[i] = pixels[i];
    }
}

template <class Lanes>
void normalRow(const HeightRows& heights, std::size_t width, const SlopeStrength& strength,
               float* rgb)
{
    std::size_t x = 0;
    while (x < width)
    {
        if (x >= 1 && x + Lanes::kWidth < width)
        {
            normalPixels<Lanes>(heights.above + x, heights.centre + x, heights.below + x, strength,
                                rgb + 3 * x);
            x += Lanes::kWidth;
        }
        else
        {
            const std::size_t rest = width - x;
            const std::size_t count = x == 0 ? 1 : (rest < Lanes::kWidth ? rest : Lanes::kWidth);
            normalPixelsAtEdge<Lanes>(heights, width, x, count, strength, rgb + 3 * x);
            x += count;
        }
    }
}
} // namespace vyr::MaterialTranslation::baking
