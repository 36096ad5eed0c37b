#include "baking/NoiseImage.h"

#include "baking/NoiseRows.h"
#include "baking/ParallelRows.h"

#include <OpenImageIO/strutil.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <iostream>
#include <optional>

namespace vyr::MaterialTranslation::baking
{
namespace
{
using Color = std::array<float, 3>;

/// Octave 33 would be a 2^32th of the first: less than half of the last bit of any pixel.
constexpr float kMostLevels = 32.0f;

struct NoiseType
{
    const char* name;
    bool octaves;  ///< levels count
    bool absolute; ///< absolute values are added, so that the noise lies above 0
};

constexpr NoiseType kNoiseTypes[] = {
    {"noise_regular", false, false},
    {"noise_fractal", true, false},
    {"noise_turbulence", true, true},
};

const NoiseType* findNoiseType(OIIO::string_view name)
{
    for (const NoiseType& type : kNoiseTypes)
    {
        if (OIIO::Strutil::iequals(name, type.name))
        {
            return &type;
        }
    }
    return nullptr;
}

constexpr OIIO::TypeDesc kColorType(OIIO::TypeDesc::FLOAT, 3);

std::optional<Color> colorAttribute(const OIIO::ImageSpec& spec, const char* name)
{
    Color color{};
    if (!spec.getattribute(name, kColorType, color.data()))
    {
        return std::nullopt;
    }
    return color;
}

/// The parameters as the kernels use them.
struct NoiseParameters
{
    std::optional<Color> color1;
    std::optional<Color> color2;
    float size;
    float thresholdLow;
    float thresholdHigh;
    float phase;
    float levels;

    int channels() const { return color1 && color2 ? 3 : 1; }
};

float orOne(float value)
{
    return value > 0.0f ? value : 1.0f;
}

NoiseParameters noiseParameters(const OIIO::ImageSpec& spec)
{
    return {
        colorAttribute(spec, "noise:color1"),
        colorAttribute(spec, "noise:color2"),
        orOne(spec.get_float_attribute("noise:size", 0.0f)),
        spec.get_float_attribute("noise:thresholdLow", 0.0f),
        spec.get_float_attribute("noise:thresholdHigh", 0.0f),
        spec.get_float_attribute("noise:phase", 0.0f),
        std::min(orOne(spec.get_float_attribute("noise:levels", 0.0f)), kMostLevels),
    };
}

OIIO::ImageSpec imageSpec(const OIIO::ImageSpec& source, const NoiseParameters& parameters)
{
    OIIO::ImageSpec spec(source.width, source.height, parameters.channels(), OIIO::TypeFloat);
    spec.attribute("noise_Color1", kColorType, parameters.color1.value_or(Color{0, 0, 0}).data());
    spec.attribute("noise_Color2", kColorType, parameters.color2.value_or(Color{1, 1, 1}).data());
    spec.attribute("noise_Size", parameters.size);
    spec.attribute("noise_ThresholdLow", parameters.thresholdLow);
    spec.attribute("noise_ThresholdHigh", parameters.thresholdHigh);
    spec.attribute("noise_Phase", parameters.phase);
    spec.attribute("noise_Levels", parameters.levels);
    return spec;
}

/// A fraction of a level adds a whole octave.
int octaveCount(float levels)
{
    int octaves = 0;
    for (float remaining = levels; remaining > 0.0f; remaining -= 1.0f)
    {
        ++octaves;
    }
    return octaves;
}

NoiseShade noiseShade(const NoiseParameters& parameters, const NoiseType& type)
{
    const Color color1 = parameters.color1.value_or(Color{0, 0, 0});
    const Color color2 = parameters.color2.value_or(Color{1, 1, 1});
    return {
        !type.absolute,        parameters.thresholdLow,           parameters.thresholdHigh,
        parameters.channels(), {color1[0], color1[1], color1[2]}, {color2[0], color2[1], color2[2]},
    };
}
} // namespace

OIIO::ImageBuf bakeNoiseImage(const OIIO::ImageSpec& source, int threads)
{
    const NoiseParameters parameters = noiseParameters(source);
    const OIIO::ImageSpec spec = imageSpec(source, parameters);
    const std::string typeName = source.get_string_attribute("noise:type");
    const NoiseType* type = findNoiseType(typeName);
    if (type == nullptr)
    {
        std::cerr << "Unsupported Noise type:" << typeName << std::endl;
        OIIO::ImageBuf image;
        if (spec.width > 0 && spec.height > 0)
        {
            image.reset("noise_image", spec, OIIO::InitializePixels::Yes);
        }
        image.errorfmt("Unsupported Noise type");
        return image;
    }
    OIIO::ImageBuf image = uninitializedImage("noise_image", spec);
    if (!image.initialized())
    {
        image.errorfmt("The noise image has no pixels");
        return image;
    }
    const NoiseField field{spec.width,
                           spec.height,
                           parameters.size,
                           parameters.phase,
                           type->octaves ? octaveCount(parameters.levels) : 1,
                           type->absolute};
    const NoiseShade shade = noiseShade(parameters, *type);
    forEachRowBlock(spec.width, spec.height, threads,
                    [&](int yBegin, int yEnd)
                    {
                        bakeNoiseRows(field, shade, kernels(), yBegin, yEnd,
                                      static_cast<float*>(image.pixeladdr(0, yBegin)));
                    });
    return image;
}

std::vector<std::string> noiseWarnings(const OIIO::ImageSpec& parameters)
{
    const float levels = parameters.get_float_attribute("noise:levels", 0.0f);
    if (levels > kMostLevels)
    {
        return {fmt::format("{:g} noise levels are baked as {:g}", levels, kMostLevels)};
    }
    return {};
}
} // namespace vyr::MaterialTranslation::baking
