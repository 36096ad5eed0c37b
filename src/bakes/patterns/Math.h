#pragma once

#include <cstdint>

/// @file
/// What the patterns compute with, for any kind L of lanes. Everything is made of single IEEE operations in the order
/// written, so that all lanes and machines give the same bits; functions that the C library rounds
/// differently from system to system are polynomials of our own (Chebyshev fits; errors are absolute).
namespace vyr::MaterialTranslation::bakes
{

/// Names for the operations of lanes.
template <class L> struct Math
{
    using Floats = typename L::Floats;
    using Bits = typename L::Bits;

    static Floats all(float a) { return L::all(a); }
    static Floats add(Floats a, Floats b) { return L::add(a, b); }
    static Floats sub(Floats a, Floats b) { return L::subtract(a, b); }
    static Floats mul(Floats a, Floats b) { return L::multiply(a, b); }
    static Floats div(Floats a, Floats b) { return L::divide(a, b); }
    static Floats add(Floats a, float b) { return L::add(a, L::all(b)); }
    static Floats sub(Floats a, float b) { return L::subtract(a, L::all(b)); }
    static Floats sub(float a, Floats b) { return L::subtract(L::all(a), b); }
    static Floats mul(Floats a, float b) { return L::multiply(a, L::all(b)); }
    static Floats abs(Floats a) { return L::absolute(a); }
    static Floats floor(Floats a) { return L::roundDown(a); }
    static Floats less(Floats a, Floats b, Floats yes, Floats no)
    {
        return L::ifLess(a, b, yes, no);
    }
    static Floats less(Floats a, float b, Floats yes, Floats no)
    {
        return L::ifLess(a, L::all(b), yes, no);
    }
    static Floats min(Floats a, Floats b) { return L::ifLess(b, a, b, a); }
    static Floats max(Floats a, Floats b) { return L::ifLess(a, b, b, a); }

    /// What is no number becomes 0.
    static Floats clamp01(Floats a)
    {
        const Floats zero = all(0.0f);
        return less(zero, a, less(a, 1.0f, a, all(1.0f)), zero);
    }
    static Floats fraction(Floats a) { return sub(a, floor(a)); }
    /// a modulo n, n > 0, for whole numbers below 2^22.
    static Floats modulo(Floats a, float n) { return sub(a, mul(floor(div(a, all(n))), n)); }
    static Floats mix(Floats a, Floats b, Floats t) { return add(a, mul(t, sub(b, a))); }
    /// 3t^2 - 2t^3 of a t from 0 to 1.
    static Floats smooth(Floats t) { return mul(mul(t, t), sub(3.0f, mul(t, 2.0f))); }

    template <std::size_t N> static Floats polynomial(const float (&c)[N], Floats x)
    {
        Floats sum = all(c[N - 1]);
        for (std::size_t i = N - 1; i-- > 0;)
            sum = add(mul(sum, x), c[i]);
        return sum;
    }

    /// The sine of an angle in turns; error 2e-7.
    static Floats sine(Floats turns)
    {
        static constexpr float c[] = {6.2831855f, -41.341682f, 81.60248f, -76.58128f, 39.760723f};
        Floats t = sub(turns, floor(add(turns, 0.5f)));
        t = less(t, -0.25f, sub(-0.5f, t), less(all(0.25f), t, sub(0.5f, t), t));
        return mul(polynomial(c, mul(t, t)), t);
    }

    /// A distance on an axis that repeats, in whole images: near 0 itself, and smooth where it turns round in the
    /// middle between. s (1 + s^2 / 3) / pi with s = sin(pi a).
    static Floats apart(Floats a)
    {
        const Floats s = sine(mul(a, 0.5f));
        return mul(add(mul(mul(s, s), s), mul(s, 3.0f)), 0.10610330f);
    }

    /// The angle of a vector in turns, counter-clockwise from x, 0 to 1; 0 for no length; error 1e-7.
    static Floats angle(Floats x, Floats y)
    {
        static constexpr float c[] = {0.15915483f,  -0.05304057f,   0.0316398f,   -0.021454731f,
                                      0.013327883f, -0.0058725993f, 0.0012454643f};
        const Floats ax = abs(x);
        const Floats ay = abs(y);
        const Floats longer = max(ax, ay);
        const Floats q = div(min(ax, ay), less(all(0.0f), longer, longer, all(1.0f)));
        Floats turns = mul(polynomial(c, mul(q, q)), q);
        turns = less(ax, ay, sub(0.25f, turns), turns);
        turns = less(x, 0.0f, sub(0.5f, turns), turns);
        return less(y, 0.0f, sub(1.0f, turns), turns);
    }

    /// sRGB's code of a linear value, both from 0 to 1; error 2e-6.
    static Floats srgbCode(Floats linear)
    {
        static constexpr float c[] = {-0.05960657f, 0.14038016f,  1.3620015f, -0.8430237f,
                                      0.64378244f,  -0.30922374f, 0.06569102f};
        const Floats x = clamp01(linear);
        const Floats root = L::squareRoot(L::squareRoot(x));
        return clamp01(less(x, 0.0031308f, mul(x, 12.92f), polynomial(c, root)));
    }

    /// The linear value of sRGB's code; error 3e-6.
    static Floats srgbValue(Floats code)
    {
        static constexpr float c[] = {0.00087092305f, 0.034599062f, 0.49519506f, 0.7992111f,
                                      -0.6483896f,    0.52299964f,  -0.2623684f, 0.057883427f};
        const Floats x = clamp01(code);
        return less(x, 0.04045f, div(x, all(12.92f)), polynomial(c, x));
    }

    /// The bits of a whole number from 0 to 2^22.
    static Bits whole(Floats a) { return L::bits(add(a, 8388608.0f)); }

    /// A number from 0 to 1 for each pair of whole numbers, without a visible order.
    static Floats random(Floats a, Floats b, std::uint32_t seed)
    {
        Bits h = round(L::all(seed), whole(a));
        h = round(h, whole(b));
        h = round(h, L::all(0x9E3779B9U));
        const Bits fraction = L::template shiftRight<9>(h);
        return sub(L::floats(L::either(fraction, L::all(0x3F800000U))), 1.0f);
    }

  private:
    /// As the corner hash of the noise.
    static Bits round(Bits h, Bits k)
    {
        h = L::add(h, k);
        h = L::add(L::template shiftLeft<10>(h), h);
        h = L::exclusiveOr(h, L::template shiftRight<6>(h));
        h = L::add(L::template shiftLeft<3>(h), h);
        h = L::exclusiveOr(h, L::template shiftRight<11>(h));
        return L::add(L::template shiftLeft<15>(h), h);
    }
};

} // namespace vyr::MaterialTranslation::bakes
