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

/// Rows whose sums are kept while the octaves are added up one after the other.
constexpr int bandRows = 64;

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

/// The lattice cell of a coordinate is the coordinate less a half, rounded to the nearest integer with ties to
/// even. A cell that is no 32-bit integer is the lowest one, with fraction 0.
NoiseAxis latticeAxis(float coordinate)
{
    constexpr float limit = 2147483648.0f;
    const float cell = std::nearbyint(coordinate - 0.5f);
    if (!(cell >= -limit && cell < limit))
        return {static_cast<std::uint32_t>(std::numeric_limits<std::int32_t>::min()), 0.0f, 0.0f};
    const float f = coordinate - cell;
    const float fade = f * f * f * (f * (f * 6.0f - 15.0f) + 10.0f);
    return {static_cast<std::uint32_t>(static_cast<std::int32_t>(cell)), f, fade};
}

float noiseCoordinate(int pixel, int pixels, float size)
{
    return std::fabs(static_cast<float>(pixel) / static_cast<float>(pixels)) * 100.0f / size;
}

/// All octaves of one strip of columns.
class NoiseStrip
{
  public:
    NoiseStrip(const NoiseField& field, const KernelSet& kernels)
        : _field(field), _kernels(kernels), _phase(latticeAxis(field.phase)),
          _columns(static_cast<std::size_t>(field.octaves)), _sums(bandRows * noiseColumns)
    {
    }

    void moveTo(int column)
    {
        for (int i = 0; i < noiseColumns; ++i)
        {
            const float along = noiseCoordinate(column + i, _field.width, _field.size);
            float frequency = 1.0f;
            for (NoiseColumns& columns : _columns)
            {
                const NoiseAxis axis = latticeAxis(along * frequency);
                columns.cell[i] = axis.cell;
                columns.fraction[i] = axis.fraction;
                columns.fade[i] = axis.fade;
                frequency *= 2.0f;
            }
        }
    }

    /// Adds up at most bandRows rows; row i of the result starts at i * noiseColumns.
    const float* sumRows(int yBegin, int yEnd)
    {
        std::ranges::fill(_sums, 0.0f);
        float frequency = 1.0f;
        for (const NoiseColumns& columns : _columns)
        {
            addOctave(columns, frequency, yBegin, yEnd);
            frequency *= 2.0f;
        }
        return _sums.data();
    }

  private:
    void addOctave(const NoiseColumns& columns, float frequency, int yBegin, int yEnd)
    {
        NoiseOctaveRow row{0.0f, 0.0f, _phase, 1.0f / frequency, _field.absolute};
        std::uint32_t cell = 0;
        for (int y = yBegin; y < yEnd; ++y)
        {
            const NoiseAxis axis =
                latticeAxis(noiseCoordinate(y, _field.height, _field.size) * frequency);
            if (y == yBegin || axis.cell != cell)
            {
                cell = axis.cell;
                _kernels.noiseGradients(columns, cell, _phase, _gradients);
            }
            row.fraction = axis.fraction;
            row.fade = axis.fade;
            float* sums = _sums.data() + static_cast<std::ptrdiff_t>(y - yBegin) * noiseColumns;
            _kernels.addNoiseOctave(_gradients, columns, row, sums);
        }
    }

    const NoiseField& _field;
    const KernelSet& _kernels;
    NoiseAxis _phase;
    std::vector<NoiseColumns> _columns;
    NoiseGradients _gradients;
    std::vector<float> _sums;
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
    return {options.width, options.height, options.size, options.phase, octaves, type.absolute};
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
        for (int y = yBegin; y < yEnd; y += bandRows)
        {
            const int bandEnd = std::min(y + bandRows, yEnd);
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
