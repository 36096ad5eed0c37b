#include "baking/NoiseRows.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <vector>

namespace vyr::MaterialTranslation::baking
{
namespace
{
/// Rows whose sums are kept while the octaves are added up one after the other.
constexpr int kBandRows = 64;

/// The lattice cell of a coordinate is the coordinate less a half, rounded to the nearest integer with ties to
/// even. A cell that is no 32-bit integer is the lowest one, with fraction 0.
NoiseAxis latticeAxis(float coordinate)
{
    constexpr float kLimit = 2147483648.0f;
    const float cell = std::nearbyint(coordinate - 0.5f);
    if (!(cell >= -kLimit && cell < kLimit))
    {
        return {static_cast<std::uint32_t>(std::numeric_limits<std::int32_t>::min()), 0.0f, 0.0f};
    }
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
          _columns(static_cast<std::size_t>(field.octaves)), _sums(kBandRows * kNoiseColumns)
    {
    }

    void moveTo(int column)
    {
        for (int i = 0; i < kNoiseColumns; ++i)
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

    /// Adds up at most kBandRows rows; row i of the result starts at i * kNoiseColumns.
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
            float* sums = _sums.data() + static_cast<std::ptrdiff_t>(y - yBegin) * kNoiseColumns;
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
} // namespace

void bakeNoiseRows(const NoiseField& field, const NoiseShade& shade, const KernelSet& kernels,
                   int yBegin, int yEnd, float* pixels)
{
    const auto channels = static_cast<std::size_t>(shade.channels);
    const std::size_t rowFloats = channels * static_cast<std::size_t>(field.width);
    NoiseStrip strip(field, kernels);
    for (int x = 0; x < field.width; x += kNoiseColumns)
    {
        strip.moveTo(x);
        const auto count = static_cast<std::size_t>(std::min(kNoiseColumns, field.width - x));
        for (int y = yBegin; y < yEnd; y += kBandRows)
        {
            const int bandEnd = std::min(y + kBandRows, yEnd);
            const float* sums = strip.sumRows(y, bandEnd);
            float* target = pixels + static_cast<std::size_t>(y - yBegin) * rowFloats +
                            channels * static_cast<std::size_t>(x);
            for (int row = y; row < bandEnd; ++row)
            {
                kernels.shadeNoise(sums, count, shade, target);
                sums += kNoiseColumns;
                target += rowFloats;
            }
        }
    }
}
} // namespace vyr::MaterialTranslation::baking
