#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vyr::MaterialTranslation::baking
{
/// One float at a time, for every processor.
struct PortableLanes
{
    static constexpr std::size_t kWidth = 1;

    struct Floats
    {
        float v;
    };
    struct Bits
    {
        std::uint32_t v;
    };

    static Floats load(const float* p) { return {*p}; }
    static Bits load(const std::uint32_t* p) { return {*p}; }
    static void store(float* p, Floats a) { *p = a.v; }
    static Floats all(float a) { return {a}; }
    static Bits all(std::uint32_t a) { return {a}; }

    static Floats add(Floats a, Floats b) { return {a.v + b.v}; }
    static Floats subtract(Floats a, Floats b) { return {a.v - b.v}; }
    static Floats multiply(Floats a, Floats b) { return {a.v * b.v}; }
    static Floats divide(Floats a, Floats b) { return {a.v / b.v}; }
    static Floats squareRoot(Floats a) { return {std::sqrt(a.v)}; }
    static Floats absolute(Floats a) { return {std::fabs(a.v)}; }
    static Floats larger(Floats a, Floats b) { return {a.v < b.v ? b.v : a.v}; }
    static Floats ifLess(Floats a, Floats b, Floats yes, Floats no) { return a.v < b.v ? yes : no; }

    static Bits add(Bits a, Bits b) { return {a.v + b.v}; }
    static Bits exclusiveOr(Bits a, Bits b) { return {a.v ^ b.v}; }
    static Bits both(Bits a, Bits b) { return {a.v & b.v}; }
    static Bits either(Bits a, Bits b) { return {a.v | b.v}; }
    static Bits butNot(Bits a, Bits b) { return {a.v & ~b.v}; }
    template <int N> static Bits shiftLeft(Bits a) { return {a.v << N}; }
    template <int N> static Bits shiftRight(Bits a) { return {a.v >> N}; }
    /// All bits of a lane set when bit N of it is.
    template <int N> static Bits spreadBit(Bits a) { return {0U - ((a.v >> N) & 1U)}; }

    static Bits bits(Floats a)
    {
        Bits b{};
        std::memcpy(&b.v, &a.v, sizeof b.v);
        return b;
    }
    static Floats floats(Bits a)
    {
        Floats b{};
        std::memcpy(&b.v, &a.v, sizeof b.v);
        return b;
    }

    /// Stores the lanes of three channels as pixels.
    static void storePixels(float* p, Floats r, Floats g, Floats b)
    {
        p[0] = r.v;
        p[1] = g.v;
        p[2] = b.v;
    }
};
} // namespace vyr::MaterialTranslation::baking
