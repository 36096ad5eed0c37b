#include <cstddef>
#include <cstdint>

#include <immintrin.h>

#include "baking/kernels/KernelTemplates.h"

namespace vyr::MaterialTranslation::baking
{

namespace
{

/// Sixteen floats at a time, with AVX-512F.
struct Avx512Lanes
{
    static constexpr std::size_t width = 16;

    struct Floats
    {
        __m512 v;
    };
    struct Bits
    {
        __m512i v;
    };

    static Floats load(const float* p) { return {_mm512_loadu_ps(p)}; }
    static Bits load(const std::uint32_t* p) { return {_mm512_loadu_si512(p)}; }
    static void store(float* p, Floats a) { _mm512_storeu_ps(p, a.v); }
    static Floats all(float a) { return {_mm512_set1_ps(a)}; }
    static Bits all(std::uint32_t a) { return {_mm512_set1_epi32(static_cast<int>(a))}; }

    static Floats add(Floats a, Floats b) { return {_mm512_add_ps(a.v, b.v)}; }
    static Floats subtract(Floats a, Floats b) { return {_mm512_sub_ps(a.v, b.v)}; }
    static Floats multiply(Floats a, Floats b) { return {_mm512_mul_ps(a.v, b.v)}; }
    static Floats divide(Floats a, Floats b) { return {_mm512_div_ps(a.v, b.v)}; }
    static Floats squareRoot(Floats a) { return {_mm512_sqrt_ps(a.v)}; }
    static Floats roundDown(Floats a) { return {_mm512_floor_ps(a.v)}; }
    static Floats absolute(Floats a) { return floats(both(bits(a), all(0x7FFFFFFFU))); }
    static Floats larger(Floats a, Floats b) { return {_mm512_max_ps(b.v, a.v)}; }
    static Floats ifLess(Floats a, Floats b, Floats yes, Floats no)
    {
        return {_mm512_mask_blend_ps(_mm512_cmp_ps_mask(a.v, b.v, _CMP_LT_OQ), no.v, yes.v)};
    }

    static Bits add(Bits a, Bits b) { return {_mm512_add_epi32(a.v, b.v)}; }
    static Bits exclusiveOr(Bits a, Bits b) { return {_mm512_xor_si512(a.v, b.v)}; }
    static Bits both(Bits a, Bits b) { return {_mm512_and_si512(a.v, b.v)}; }
    static Bits either(Bits a, Bits b) { return {_mm512_or_si512(a.v, b.v)}; }
    static Bits butNot(Bits a, Bits b) { return {_mm512_andnot_si512(b.v, a.v)}; }
    template <int N> static Bits shiftLeft(Bits a) { return {_mm512_slli_epi32(a.v, N)}; }
    template <int N> static Bits shiftRight(Bits a) { return {_mm512_srli_epi32(a.v, N)}; }
    template <int N> static Bits spreadBit(Bits a)
    {
        return {_mm512_srai_epi32(_mm512_slli_epi32(a.v, 31 - N), 31)};
    }

    static Bits bits(Floats a) { return {_mm512_castps_si512(a.v)}; }
    static Floats floats(Bits a) { return {_mm512_castsi512_ps(a.v)}; }

    /// Each channel is permuted once, so that all its lanes stand where the three vectors want them.
    static void storePixels(float* p, Floats r, Floats g, Floats b)
    {
        const __m512 pr = _mm512_permutexvar_ps(
            _mm512_setr_epi32(0, 11, 6, 1, 12, 7, 2, 13, 8, 3, 14, 9, 4, 15, 10, 5), r.v);
        const __m512 pg = _mm512_permutexvar_ps(
            _mm512_setr_epi32(5, 0, 11, 6, 1, 12, 7, 2, 13, 8, 3, 14, 9, 4, 15, 10), g.v);
        const __m512 pb = _mm512_permutexvar_ps(
            _mm512_setr_epi32(10, 5, 0, 11, 6, 1, 12, 7, 2, 13, 8, 3, 14, 9, 4, 15), b.v);
        constexpr __mmask16 second = 0x2492;
        constexpr __mmask16 third = 0x4924;
        _mm512_storeu_ps(p, _mm512_mask_mov_ps(_mm512_mask_mov_ps(pr, second, pg), third, pb));
        _mm512_storeu_ps(p + 16, _mm512_mask_mov_ps(_mm512_mask_mov_ps(pg, second, pb), third, pr));
        _mm512_storeu_ps(p + 32, _mm512_mask_mov_ps(_mm512_mask_mov_ps(pb, second, pr), third, pg));
    }
};

} // namespace

KernelSet avx512Kernels()
{
    return kernelSetOf<Avx512Lanes>("avx512");
}

} // namespace vyr::MaterialTranslation::baking
