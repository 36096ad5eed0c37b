#include "baking/ColorImage.h"

#include <algorithm>
#include <cmath>

#include "baking/ImageFile.h"
#include "baking/PatternImage.h"

namespace vyr::MaterialTranslation::baking
{

namespace
{

constexpr std::size_t channels = 3;

/// The sine of an angle in degrees, by its series: the C library's hangs on the system.
double sineOfDegrees(double degrees)
{
    constexpr double pi = 3.14159265358979323846;
    double turned = degrees - 360.0 * std::floor(degrees / 360.0 + 0.5);
    if (std::fabs(turned) > 90.0)
        turned = (turned < 0.0 ? -180.0 : 180.0) - turned;
    const double x = turned * (pi / 180.0);
    double term = x;
    double sum = x;
    for (int n = 1; n < 12; ++n)
    {
        term *= -x * x / ((2.0 * n) * (2.0 * n + 1.0));
        sum += term;
    }
    return sum;
}

/// A map of the plane: (x, y) to (a x + b y + c, d x + e y + f).
struct Map
{
    double a, b, c, d, e, f;

    Map operator*(const Map& first) const
    {
        return {a * first.a + b * first.d,     a * first.b + b * first.e,
                a * first.c + b * first.f + c, d * first.a + e * first.d,
                d * first.b + e * first.e,     d * first.c + e * first.f + f};
    }
};

Map scaled(double x, double y)
{
    return {x, 0.0, 0.0, 0.0, y, 0.0};
}

Map moved(double x, double y)
{
    return {1.0, 0.0, x, 0.0, 1.0, y};
}

Map turned(double degrees)
{
    const double s = sineOfDegrees(degrees);
    const double c = sineOfDegrees(degrees + 90.0);
    return {c, -s, 0.0, s, c, 0.0};
}

double orOne(float value)
{
    return value == 0.0f ? 1.0 : static_cast<double>(value);
}

/// From the surface to an image's coordinates, as the node that reads it goes.
Map toImage(const ImagePlacement& p)
{
    return moved(-p.uvOffset[0], -p.uvOffset[1]) *
           scaled(orOne(p.uvScale[0]) / orOne(p.size[0]), orOne(p.uvScale[1]) / orOne(p.size[1])) *
           turned(-p.degrees) * moved(-p.offset[0], -p.offset[1]);
}

/// The way back.
Map toSurface(const ImagePlacement& p)
{
    return moved(p.offset[0], p.offset[1]) * turned(p.degrees) *
           scaled(orOne(p.size[0]) / orOne(p.uvScale[0]), orOne(p.size[1]) / orOne(p.uvScale[1])) *
           moved(p.uvOffset[0], p.uvOffset[1]);
}

/// Two neighbouring pixels on one axis, and the share of the second one.
struct Neighbours
{
    std::size_t first;
    std::size_t second;
    float share;
};

/// @param place  On the axis, 0 to 1 across the image.
Neighbours neighbours(float place, int pixels, bool repeats)
{
    place = repeats ? place - std::floor(place) : place;
    // What is no number lies at 0.
    place = place > 0.0f ? std::min(place, 1.0f) : 0.0f;
    const float at = place * static_cast<float>(pixels) - 0.5f;
    const float before = std::floor(at);
    const auto inside = [&](int pixel)
    {
        if (repeats)
            return static_cast<std::size_t>((pixel + pixels) % pixels);
        return static_cast<std::size_t>(std::clamp(pixel, 0, pixels - 1));
    };
    const int pixel = static_cast<int>(before);
    return {inside(pixel), inside(pixel + 1), at - before};
}

float between(float a, float b, float share)
{
    return a + share * (b - a);
}

/// A pixel, on one axis, of which a larger one covers a share.
struct Part
{
    std::size_t from;
    std::size_t to;
    float share; ///< of the larger one
};

/// All pixels of an axis that gets fewer of them.
std::vector<Part> partsOf(int from, int to)
{
    std::vector<Part> parts;
    const double size = static_cast<double>(from) / to;
    for (int i = 0; i < to; ++i)
    {
        const double begin = i * size;
        const double end = i + 1 < to ? (i + 1) * size : from;
        for (int k = static_cast<int>(begin); k < end; ++k)
            parts.push_back(
                {static_cast<std::size_t>(k), static_cast<std::size_t>(i),
                 static_cast<float>((std::min(k + 1.0, end) - std::max<double>(k, begin)) / size)});
    }
    return parts;
}

/// Makes pixels of 1, 2 or more channels pixels of three.
std::vector<float> asColors(const OIIO::ImageBuf& image)
{
    const OIIO::ImageSpec& spec = image.spec();
    const auto given = static_cast<std::size_t>(spec.nchannels);
    const auto* pixels = static_cast<const float*>(image.localpixels());
    std::vector<float> colors(spec.image_pixels() * channels);
    for (std::size_t i = 0; i < spec.image_pixels(); ++i)
        for (std::size_t c = 0; c < channels; ++c)
            colors[channels * i + c] = pixels[given * i + (given < channels ? 0 : c)];
    return colors;
}

} // namespace

SampledImage::SampledImage(const ColorImage& image, const Pattern& parent, bool isNumber,
                           const BakeSettings& settings, const KernelSet& set)
    : _repeats{image.placement.repeats[0], image.placement.repeats[1]}
{
    read(image, isNumber, settings, set);
    place(image.placement, parent);
    // Small enough that neighbouring pixels of the pattern lie at most one of the image's apart on each axis.
    const auto wanted = [&](const float* map, int pixels)
    {
        const float step = std::max(std::fabs(map[0]) / static_cast<float>(parent.width),
                                    std::fabs(map[1]) / static_cast<float>(parent.height));
        // What is no number leaves the image as it is.
        if (!(step * static_cast<float>(pixels) > 1.0f))
            return pixels;
        return std::clamp(static_cast<int>(std::ceil(1.0f / step)), 1, pixels);
    };
    shrink(wanted(_u, _level.width), wanted(_v, _level.height));
}

void SampledImage::read(const ColorImage& image, bool isNumber, const BakeSettings& settings,
                        const KernelSet& set)
{
    OIIO::ImageBuf pixels;
    bool isCoded = false;
    if (image.pattern)
        pixels = bakePattern(*image.pattern, PatternPixels::Color, settings, set);
    else
    {
        HeightImage file = readHeightImage(image.file, settings.limits, settings.threads, channels);
        isCoded = !file.source.format.is_floating_point();
        pixels = std::move(file.heights);
    }
    _level = {pixels.spec().width, pixels.spec().height, asColors(pixels)};
    if (isNumber)
        for (std::size_t i = 0; i < _level.pixels.size(); i += channels)
        {
            float* const p = _level.pixels.data() + i;
            p[0] = p[1] = p[2] = luminance(p[0], p[1], p[2]);
        }
    else if (isCoded)
        set.decodeSrgb(_level.pixels.data(), _level.pixels.size());
}

void SampledImage::place(const ImagePlacement& own, const Pattern& parent)
{
    const Map map = toImage(own) * toSurface(parent.placement);
    const double u[] = {map.a, map.b, map.c};
    const double v[] = {map.d, map.e, map.f};
    for (int i = 0; i < 3; ++i)
    {
        _u[i] = static_cast<float>(u[i]);
        _v[i] = static_cast<float>(v[i]);
    }
}

void SampledImage::shrink(int width, int height)
{
    if (width == _level.width && height == _level.height)
        return;
    const Level large = std::move(_level);
    _level = {width, height, {}};
    _level.pixels.resize(channels * static_cast<std::size_t>(width) *
                         static_cast<std::size_t>(height));
    const auto at = [](const Level& level, std::size_t column, std::size_t row)
    { return channels * (row * static_cast<std::size_t>(level.width) + column); };
    const std::vector<Part> columns = partsOf(large.width, width);
    for (const Part& row : partsOf(large.height, height))
        for (const Part& column : columns)
        {
            const float share = row.share * column.share;
            const float* const from = large.pixels.data() + at(large, column.from, row.from);
            float* const to = _level.pixels.data() + at(_level, column.to, row.to);
            for (std::size_t c = 0; c < channels; ++c)
                to[c] += share * from[c];
        }
}

void SampledImage::sample(const float* x, float y, int count, float (*colors)[noiseColumns]) const
{
    const auto row = static_cast<std::size_t>(_level.width);
    for (int i = 0; i < count; ++i)
    {
        const float u = _u[0] * x[i] + _u[1] * y + _u[2];
        const float v = _v[0] * x[i] + _v[1] * y + _v[2];
        const Neighbours across = neighbours(u, _level.width, _repeats[0]);
        // Rows go downwards.
        const Neighbours down = neighbours(1.0f - v, _level.height, _repeats[1]);
        const auto pixel = [&](std::size_t column, std::size_t line)
        { return _level.pixels.data() + channels * (line * row + column); };
        const float* const a = pixel(across.first, down.first);
        const float* const b = pixel(across.second, down.first);
        const float* const c = pixel(across.first, down.second);
        const float* const d = pixel(across.second, down.second);
        for (std::size_t k = 0; k < channels; ++k)
            colors[k][i] = between(between(a[k], b[k], across.share),
                                   between(c[k], d[k], across.share), down.share);
    }
}

} // namespace vyr::MaterialTranslation::baking
