#include "baking/kernels/Kernels.h"

#include "baking/kernels/KernelSetOf.h"

#if defined(VYR_BAKING_X86) && defined(_MSC_VER) && !defined(__clang__)
#include <intrin.h>

#include <immintrin.h>
#endif

namespace vyr::MaterialTranslation::baking
{
namespace
{
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
    constexpr int kOsxsave = 1 << 27;
    if ((registers[2] & kOsxsave) == 0)
    {
        return {false, false};
    }
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
    std::vector<KernelSet> sets{portableKernels()};
#if defined(VYR_BAKING_X86)
    const VectorSupport support = vectorSupport();
    if (support.avx2)
    {
        sets.push_back(avx2Kernels());
    }
    if (support.avx512)
    {
        sets.push_back(avx512Kernels());
    }
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
