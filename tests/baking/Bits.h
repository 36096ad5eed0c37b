#pragma once

#include <OpenImageIO/imagebuf.h>

#include <cmath>
#include <cstring>

#if defined(__x86_64__) || defined(_M_X64)
#include <xmmintrin.h>
#endif

namespace vyr::MaterialTranslation::baking
{
/// Whether two float images are equal in every bit; any NaN equals any other.
inline bool sameBits(const OIIO::ImageBuf& a, const OIIO::ImageBuf& b)
{
    const OIIO::ImageSpec& spec = a.spec();
    const auto* left = static_cast<const float*>(a.localpixels());
    const auto* right = static_cast<const float*>(b.localpixels());
    if (!left || !right || spec.width != b.spec().width || spec.height != b.spec().height ||
        spec.nchannels != b.spec().nchannels)
        return false;
    for (OIIO::imagesize_t i = 0; i < spec.image_bytes() / sizeof(float); ++i)
        if (std::memcmp(left + i, right + i, sizeof(float)) != 0 &&
            !(std::isnan(left[i]) && std::isnan(right[i])))
            return false;
    return true;
}

/// Flushes denormals to zero in this thread, as a host may do; where the processor cannot, it does nothing.
struct FlushedDenormals
{
#if defined(__x86_64__) || defined(_M_X64)
    FlushedDenormals() { _mm_setcsr(saved | 0x8040U); }
    ~FlushedDenormals() { _mm_setcsr(saved); }
    const unsigned saved = _mm_getcsr();
#else
    FlushedDenormals() {}
#endif
};
} // namespace vyr::MaterialTranslation::baking
