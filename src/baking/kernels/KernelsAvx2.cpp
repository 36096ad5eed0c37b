#include <cstddef>
#include <cstdint>

#include <immintrin.h>

#include "baking/kernels/KernelTemplates.h"

namespace vyr::MaterialTranslation::baking
{

namespace
{

/// Eight floats at a time, with AVX2.
struct Avx2Lanes
{
    static constexpr std::size_t width = 8;

    struct Floats
    {
        __m256 v;
    };
    struct Bits
    {
        __m256i v;
    };

    static Floats load(const float* p) { return {_mm256_loadu_ps(p)}; }
    static Bits load(const std::uint32_t* p)
    {
        return {_mm256_loadu_si256(reinterpret_cast<const __m256i_u*>(p))};
    }
    static void store(float* p, Floats a) { _mm256_storeu_ps(p, a.v); }
    static Floats all(float a) { return {_mm256_set1_ps(a)}; }
    static Bits all(std::uint32_t a) { return {_mm256_set1_epi32(static_cast<int>(a))}; }

    static Floats add(Floats a, Floats b) { return {_mm256_add_ps(a.v, b.v)}; }
    static Floats subtract(Floats a, Floats b) { return {_mm256_sub_ps(a.v, b.v)}; }
    static Floats multiply(Floats a, Floats b) { return {_mm256_mul_ps(a.v, b.v)}; }
    static Floats divide(Floats a, Floats b) { return {_mm256_div_ps(a.v, b.v)}; }
    static Floats squareRoot(Floats a) { return {_mm256_sqrt_ps(a.v)}; }
    static Floats roundDown(Floats a) { return {_mm256_floor_ps(a.v)}; }
    static Floats absolute(Floats a) { return {_mm256_andnot_ps(_mm256_set1_ps(-0.0f), a.v)}; }
    static Floats larger(Floats a, Floats b) { return {_mm256_max_ps(b.v, a.v)}; }
    static Floats ifLess(Floats a, Floats b, Floats yes, Floats no)
    {
        return {_mm256_blendv_ps(no.v, yes.v, _mm256_cmp_ps(a.v, b.v, _CMP_LT_OQ))};
    }

    static Bits add(Bits a, Bits b) { return {_mm256_add_epi32(a.v, b.v)}; }
    static Bits exclusiveOr(Bits a, Bits b) { return {_mm256_xor_si256(a.v, b.v)}; }
    static Bits both(Bits a, Bits b) { return {_mm256_and_si256(a.v, b.v)}; }
    static Bits either(Bits a, Bits b) { return {_mm256_or_si256(a.v, b.v)}; }
    static Bits butNot(Bits a, Bits b) { return {_mm256_andnot_si256(b.v, a.v)}; }
    template <int N> static Bits shiftLeft(Bits a) { return {_mm256_slli_epi32(a.v, N)}; }
    template <int N> static Bits shiftRight(Bits a) { return {_mm256_srli_epi32(a.v, N)}; }
    template <int N> static Bits spreadBit(Bits a)
    {
        return {_mm256_srai_epi32(_mm256_slli_epi32(a.v, 31 - N), 31)};
    }

    static Bits bits(Floats a) { return {_mm256_castps_si256(a.v)}; }
    static Floats floats(Bits a) { return {_mm256_castsi256_ps(a.v)}; }

    /// Each channel is permuted once, so that all its lanes stand where the three vectors want them.
    static void storePixels(float* p, Floats r, Floats g, Floats b)
    {
        const __m256 pr = _mm256_permutevar8x32_ps(r.v, _mm256_setr_epi32(0, 3, 6, 1, 4, 7, 2, 5));
        const __m256 pg = _mm256_permutevar8x32_ps(g.v, _mm256_setr_epi32(5, 0, 3, 6, 1, 4, 7, 2));
        const __m256 pb = _mm256_permutevar8x32_ps(b.v, _mm256_setr_epi32(2, 5, 0, 3, 6, 1, 4, 7));
        _mm256_storeu_ps(p, _mm256_blend_ps(_mm256_blend_ps(pr, pg, 0x92), pb, 0x24));
        _mm256_storeu_ps(p + 8, _mm256_blend_ps(_mm256_blend_ps(pb, pr, 0x92), pg, 0x24));
        _mm256_storeu_ps(p + 16, _mm256_blend_ps(_mm256_blend_ps(pg, pb, 0x92), pr, 0x24));
    }
};

} // namespace

KernelSet avx2Kernels()
{
    return kernelSetOf<Avx2Lanes>("avx2");
}

} // namespace vyr::MaterialTranslation::baking
