#pragma once

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <span>

#include <OpenImageIO/imagebuf.h>

namespace vyr::MaterialTranslation::baking
{

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();

/// Grain that bytes can hold, with channels that differ by more than lossy formats lose.
inline OIIO::ImageBuf picture(int width, int height, int channels)
{
    OIIO::ImageBuf image(OIIO::ImageSpec(width, height, channels, OIIO::TypeFloat));
    std::mt19937 random(11);
    for (OIIO::ImageBuf::Iterator<float> i(image); !i.done(); ++i)
        for (int c = 0; c < channels; ++c)
            i[c] =
                static_cast<float>(60U + 50U * static_cast<unsigned>(c) + random() % 16) / 255.0f;
    return image;
}

/// Whether two float images are equal in every bit; any NaN equals any other.
inline bool sameBits(const OIIO::ImageBuf& a, const OIIO::ImageBuf& b)
{
    const auto floats = [](const OIIO::ImageBuf& image)
    {
        return std::span(static_cast<const float*>(image.localpixels()),
                         image.localpixels() ? image.spec().image_bytes() / sizeof(float) : 0);
    };
    const auto same = [](float x, float y)
    { return std::memcmp(&x, &y, sizeof x) == 0 || (std::isnan(x) && std::isnan(y)); };
    return a.localpixels() && a.roi() == b.roi() && std::ranges::equal(floats(a), floats(b), same);
}

} // namespace vyr::MaterialTranslation::baking
