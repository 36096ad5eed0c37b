#include "baking/kernels/Kernels.h"

#include <cmath>
#include <cstring>

#include "baking/kernels/KernelTemplates.h"

#if defined(VYR_BAKING_X86) && defined(_MSC_VER) && !defined(__clang__)
#include <intrin.h>

#include <immintrin.h>
#endif

namespace vyr::MaterialTranslation::baking
{

namespace
{

/// One float at a time, for every processor.
struct PortableLanes
{
    static constexpr std::size_t width = 1;

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
    static Floats roundDown(Floats a) { return {std::floor(a.v)}; }
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

#if defined(VYR_BAKING_X86)
/// What both the processor and the operating system (which has to save the registers) support.
struct VectorSupport
{
    bool avx2;
    bool avx512;
};

VectorSupport vectorSupport()
{
#if defined(_MSC_VER) && !defined(__clang__)
    int registers[4] = {};
    __cpuidex(registers, 1, 0);
    constexpr int osxsave = 1 << 27;
    if ((registers[2] & osxsave) == 0)
        return {false, false};
    const unsigned long long saved = _xgetbv(0);
    __cpuidex(registers, 7, 0);
    const auto has = [&](unsigned long long state, int bit)
    { return (saved & state) == state && ((registers[1] >> bit) & 1) != 0; };
    return {has(0x06, 5), has(0xE6, 16)};
#else
    __builtin_cpu_init();
    return {__builtin_cpu_supports("avx2") != 0, __builtin_cpu_supports("avx512f") != 0};
#endif
}
#endif

std::vector<KernelSet> supportedKernelSets()
{
    std::vector<KernelSet> sets{kernelSetOf<PortableLanes>("portable")};
#if defined(VYR_BAKING_X86)
    const VectorSupport support = vectorSupport();
    if (support.avx2)
        sets.push_back(avx2Kernels());
    if (support.avx512)
        sets.push_back(avx512Kernels());
#endif
    return sets;
}

} // namespace

const std::vector<KernelSet>& kernelSets()
{
    static const std::vector<KernelSet> sets = supportedKernelSets();
    return sets;
}

const KernelSet& kernels()
{
    return kernelSets().back();
}

} // namespace vyr::MaterialTranslation::baking
