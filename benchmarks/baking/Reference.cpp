#include "Reference.h"

#include <cmath>
#include <cstddef>
#include <cstdint>

namespace vyr::MaterialTranslation::baking::reference
{

namespace
{

float hypot3(float x, float y, float z)
{
    x = std::fabs(x);
    y = std::fabs(y);
    z = std::fabs(z);
    const float m = x < y ? (y < z ? z : y) : (x < z ? z : x);
    if (m == 0.0f)
        return 0.0f;
    return m * std::sqrt((x / m) * (x / m) + (y / m) * (y / m) + (z / m) * (z / m));
}

} // namespace

void bakeNormalRows(const OIIO::ImageBuf& height, float strengthX, float strengthY, int yBegin,
                    int yEnd, OIIO::ImageBuf& image)
{
    constexpr float weightsX[9] = {-1, 0, 1, -2, 0, 2, -1, 0, 1};
    constexpr float weightsY[9] = {-1, -2, -1, 0, 0, 0, 1, 2, 1};
    const OIIO::ImageSpec& spec = height.spec();
    const OIIO::ROI rows(0, spec.width, yBegin, yEnd);
    OIIO::ImageBuf::ConstIterator<float> near(height, OIIO::ROI(), OIIO::ImageBuf::WrapClamp);
    for (OIIO::ImageBuf::Iterator<float> out(image, rows); !out.done(); ++out)
    {
        const int x = out.x() + spec.x;
        const int y = out.y() + spec.y;
        near.rerange(x - 1, x + 2, y - 1, y + 2, spec.z, spec.z + 1, OIIO::ImageBuf::WrapClamp);
        float dx = 0.0f;
        float dy = 0.0f;
        for (int i = 0; i < 9; ++i, ++near)
        {
            dx += weightsX[i] * near[0];
            dy += weightsY[i] * near[0];
        }
        float n[3] = {-strengthX * dx, strengthY * dy, 4.0f};
        const float length = hypot3(n[0], n[1], n[2]);
        for (int c = 0; c < 3; ++c)
        {
            if (length != 0.0f)
                n[c] /= length;
            out[c] = n[c] * 0.5f + 0.5f;
        }
    }
}

namespace
{

struct Lattice
{
    std::uint32_t cell;
    float fraction;
};

Lattice lattice(float c)
{
    const float i = std::nearbyint(c - 0.5f);
    if (i >= -2147483648.0f && i < 2147483648.0f)
        return {static_cast<std::uint32_t>(static_cast<std::int32_t>(i)), c - i};
    return {0x80000000U, 0.0f};
}

float fade(float f)
{
    return f * f * f * (f * (f * 6.0f - 15.0f) + 10.0f);
}

std::uint32_t hash(const std::uint32_t (&cell)[4])
{
    std::uint32_t h = 0;
    for (const std::uint32_t k : cell)
    {
        h += k;
        h *= 1025;
        h ^= h >> 6;
        h *= 9;
        h ^= h >> 11;
        h *= 32769;
    }
    return h;
}

float gradient(std::uint32_t h, float dx, float dy, float dz, float dw)
{
    const std::uint32_t g = h & 31U;
    const float u = g < 24 ? dx : dy;
    const float v = g < 16 ? dy : dz;
    const float t = g < 8 ? dz : dw;
    return ((g & 1U) != 0 ? -u : u) + ((g & 2U) != 0 ? -v : v) + ((g & 4U) != 0 ? -t : t);
}

float interpolate(float a, float b, float s)
{
    return a + s * (b - a);
}

float octaveSum(const NoiseBakeOptions& noise, float x, float y, bool turbulence)
{
    float sum = 0.0f;
    float frequency = 1.0f;
    for (float remaining = noise.levels; remaining > 0.0f; remaining -= 1.0f, frequency *= 2.0f)
    {
        const float n = noise4(x * frequency, y * frequency, 0.0f, noise.phase) / frequency;
        sum += turbulence ? std::fabs(n) : n;
    }
    return sum;
}

float noiseValue(const NoiseBakeOptions& noise, float x, float y)
{
    if (noise.type == "noise_regular")
        return (noise4(x, y, 0.0f, noise.phase) + 1.0f) * 0.5f;
    const bool turbulence = noise.type == "noise_turbulence";
    const float sum = octaveSum(noise, x, y, turbulence);
    return turbulence ? sum : (sum + 1.0f) * 0.5f;
}

float threshold(float v, float low, float high)
{
    if (v < low)
        return 0.0f;
    if (v > high)
        return 1.0f;
    return low != high ? (v - low) / (high - low) : v;
}

} // namespace

float noise4(float x, float y, float z, float w, int periodX, int periodY)
{
    const Lattice at[4] = {lattice(x), lattice(y), lattice(z), lattice(w)};
    const auto wrapped = [](std::uint32_t corner, int period)
    {
        const auto cells = static_cast<std::uint32_t>(period);
        return cells == 0 ? corner : (corner + cells) % cells;
    };
    float value[16];
    for (std::uint32_t corner = 0; corner < 16; ++corner)
    {
        std::uint32_t cell[4];
        float d[4];
        for (std::uint32_t c = 0; c < 4; ++c)
        {
            const std::uint32_t upper = (corner >> c) & 1U;
            cell[c] = at[c].cell + upper;
            d[c] = upper != 0 ? at[c].fraction - 1.0f : at[c].fraction;
        }
        cell[0] = wrapped(cell[0], periodX);
        cell[1] = wrapped(cell[1], periodY);
        value[corner] = gradient(hash(cell), d[0], d[1], d[2], d[3]);
    }
    int values = 16;
    for (const Lattice& axis : at)
    {
        values /= 2;
        for (int i = 0; i < values; ++i)
            value[i] = interpolate(value[2 * i], value[2 * i + 1], fade(axis.fraction));
    }
    return value[0] * 0.87f;
}

void bakeNoiseRows(const NoiseBakeOptions& noise, int yBegin, int yEnd, OIIO::ImageBuf& image)
{
    const OIIO::ROI whole = image.roi();
    const auto width = static_cast<float>(whole.width());
    const auto height = static_cast<float>(whole.height());
    const OIIO::ROI rows(whole.xbegin, whole.xend, yBegin, yEnd);
    for (OIIO::ImageBuf::Iterator<float> out(image, rows); !out.done(); ++out)
    {
        const float down =
            std::fabs(static_cast<float>(out.y() - whole.ybegin) / height) * 100.0f / noise.size;
        const float across =
            std::fabs(static_cast<float>(out.x() - whole.xbegin) / width) * 100.0f / noise.size;
        const float v =
            threshold(noiseValue(noise, down, across), noise.thresholdLow, noise.thresholdHigh);
        if (image.nchannels() == 1)
        {
            out[0] = v;
            continue;
        }
        for (std::size_t c = 0; c < 3; ++c)
            out[static_cast<int>(c)] = (*noise.color1)[c] * (1.0f - v) + (*noise.color2)[c] * v;
    }
}

} // namespace vyr::MaterialTranslation::baking::reference
