#pragma once

#include <OpenImageIO/imagebuf.h>

#include <cmath>
#include <cstdint>
#include <cstring>

#if defined(__x86_64__) || defined(_M_X64)
#include <xmmintrin.h>
#endif

namespace vyr::MaterialTranslation::baking
{
/// Equal in every bit; any NaN equals any other.
inline bool sameBits(float a, float b)
{
    return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

/// How many floats of two float images differ; images of different shape differ in all.
inline OIIO::imagesize_t differentFloats(const OIIO::ImageBuf& a, const OIIO::ImageBuf& b)
{
    const OIIO::imagesize_t values =
        a.spec().image_pixels() * static_cast<OIIO::imagesize_t>(a.nchannels());
    if (a.spec().width != b.spec().width || a.spec().height != b.spec().height ||
        a.nchannels() != b.nchannels() || a.localpixels() == nullptr ||
        b.localpixels() == nullptr || values == 0)
    {
        return values + 1;
    }
    const auto* left = static_cast<const float*>(a.localpixels());
    const auto* right = static_cast<const float*>(b.localpixels());
    OIIO::imagesize_t different = 0;
    for (OIIO::imagesize_t i = 0; i < values; ++i)
        different += sameBits(left[i], right[i]) ? 0U : 1U;
    return different;
}

/// Flushes denormals to zero in this thread, as a host may do; where the processor cannot, it does nothing.
class FlushedDenormals
{
  public:
#if defined(__x86_64__) || defined(_M_X64)
    FlushedDenormals() : _saved(_mm_getcsr()) { _mm_setcsr(_saved | 0x8040U); }
    ~FlushedDenormals() { _mm_setcsr(_saved); }
    FlushedDenormals(const FlushedDenormals&) = delete;
    FlushedDenormals& operator=(const FlushedDenormals&) = delete;

  private:
    unsigned _saved;
#else
    FlushedDenormals() {}
#endif
};
} // namespace vyr::MaterialTranslation::baking
