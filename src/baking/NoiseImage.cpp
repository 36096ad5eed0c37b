#include "baking/NoiseImage.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <iostream>
#include <limits>
#include <optional>
#include <vector>

#include "baking/ImageRows.h"
#include "base/Text.h"

namespace vyr::MaterialTranslation::baking
{

namespace
{

using Color = std::array<float, 3>;

constexpr Color black{0.0f, 0.0f, 0.0f};
constexpr Color white{1.0f, 1.0f, 1.0f};

constexpr OIIO::TypeDesc colorType(OIIO::TypeDesc::FLOAT, 3);

struct NoiseType
{
    const char* name;
    bool octaves;  ///< levels count
    bool absolute; ///< absolute values are added, so that the noise lies above 0
};

constexpr NoiseType noiseTypes[] = {
    {"noise_regular", false, false},
    {"noise_fractal", true, false},
    {"noise_turbulence", true, true},
};

float orOne(float value)
{
    return value > 0.0f ? value : 1.0f;
}

/// The options as they count.
NoiseBakeOptions withinRanges(NoiseBakeOptions options)
{
    options.size = orOne(options.size);
    options.levels = std::min(orOne(options.levels), mostNoiseLevels);
    return options;
}

/// @param options  As they count.
OIIO::ImageSpec imageSpec(const NoiseBakeOptions& options)
{
    const int channels = options.color1 && options.color2 ? 3 : 1;
    OIIO::ImageSpec spec(options.width, options.height, channels, OIIO::TypeFloat);
    spec.attribute("noise_Color1", colorType, options.color1.value_or(black).data());
    spec.attribute("noise_Color2", colorType, options.color2.value_or(white).data());
    spec.attribute("noise_Size", options.size);
    spec.attribute("noise_ThresholdLow", options.thresholdLow);
    spec.attribute("noise_ThresholdHigh", options.thresholdHigh);
    spec.attribute("noise_Phase", options.phase);
    spec.attribute("noise_Levels", options.levels);
    return spec;
}

/// A fraction of a level adds a whole octave.
NoiseField noiseField(const NoiseBakeOptions& options, const NoiseType& type)
{
    const int octaves = type.octaves ? static_cast<int>(std::ceil(options.levels)) : 1;
    return {options.width, options.height, options.size, 0, 0,
            options.phase, octaves,        type.absolute};
}

NoiseShade noiseShade(const NoiseBakeOptions& options, const NoiseType& type, int channels)
{
    const Color a = options.color1.value_or(black);
    const Color b = options.color2.value_or(white);
    return {!type.absolute, options.thresholdLow, options.thresholdHigh,
            channels,       {a[0], a[1], a[2]},   {b[0], b[1], b[2]}};
}

OIIO::ImageBuf unsupportedType(const std::string& type, const OIIO::ImageSpec& spec)
{
    std::cerr << "Unsupported Noise type:" << type << std::endl;
    OIIO::ImageBuf image;
    if (spec.width > 0 && spec.height > 0)
        image.reset("noise_image", spec, OIIO::InitializePixels::Yes);
    image.errorfmt("Unsupported Noise type");
    return image;
}

std::optional<Color> colorAttribute(const OIIO::ImageSpec& spec, const char* name)
{
    Color color{};
    if (!spec.getattribute(name, colorType, color.data()))
        return std::nullopt;
    return color;
}

} // namespace

void bakeNoiseRows(const NoiseField& field, const NoiseShade& shade, const KernelSet& kernels,
                   int yBegin, int yEnd, float* pixels)
{
    const auto channels = static_cast<std::size_t>(shade.channels);
    const std::size_t rowFloats = channels * static_cast<std::size_t>(field.width);
    NoiseStrip strip(field, kernels);
    for (int x = 0; x < field.width; x += noiseColumns)
    {
        strip.moveTo(x);
        const auto count = static_cast<std::size_t>(std::min(noiseColumns, field.width - x));
        for (int y = yBegin; y < yEnd; y += NoiseStrip::bandRows)
        {
            const int bandEnd = std::min(y + NoiseStrip::bandRows, yEnd);
            const float* sums = strip.sumRows(y, bandEnd);
            float* target = pixels + static_cast<std::size_t>(y - yBegin) * rowFloats +
                            channels * static_cast<std::size_t>(x);
            for (int row = y; row < bandEnd; ++row)
            {
                kernels.shadeNoise(sums, count, shade, target);
                sums += noiseColumns;
                target += rowFloats;
            }
        }
    }
}

OIIO::ImageBuf bakeNoise(const NoiseBakeOptions& given, const KernelSet& set)
{
    const NoiseBakeOptions options = withinRanges(given);
    const OIIO::ImageSpec spec = imageSpec(options);
    const auto* type =
        std::ranges::find_if(noiseTypes, [&](const NoiseType& known)
                             { return base::equalsIgnoringCase(known.name, options.type); });
    if (type == std::end(noiseTypes))
        return unsupportedType(options.type, spec);
    OIIO::ImageBuf image = uninitializedImage("noise_image", spec);
    if (!image.initialized())
    {
        image.errorfmt("The noise image has no pixels");
        return image;
    }
    const NoiseField field = noiseField(options, *type);
    const NoiseShade shade = noiseShade(options, *type, spec.nchannels);
    forEachRowBlock(spec.width, spec.height, options.threads,
                    [&](int yBegin, int yEnd)
                    {
                        bakeNoiseRows(field, shade, set, yBegin, yEnd,
                                      static_cast<float*>(image.pixeladdr(0, yBegin)));
                    });
    return image;
}

OIIO::ImageBuf bakeNoiseImage(const OIIO::ImageSpec& parameters, int threads)
{
    NoiseBakeOptions options;
    options.width = parameters.width;
    options.height = parameters.height;
    options.type = parameters.get_string_attribute("noise:type");
    options.color1 = colorAttribute(parameters, "noise:color1");
    options.color2 = colorAttribute(parameters, "noise:color2");
    options.size = parameters.get_float_attribute("noise:size", 0.0f);
    options.thresholdLow = parameters.get_float_attribute("noise:thresholdLow", 0.0f);
    options.thresholdHigh = parameters.get_float_attribute("noise:thresholdHigh", 0.0f);
    options.levels = parameters.get_float_attribute("noise:levels", 0.0f);
    options.phase = parameters.get_float_attribute("noise:phase", 0.0f);
    options.threads = threads;
    return bakeNoise(options);
}

} // namespace vyr::MaterialTranslation::baking
