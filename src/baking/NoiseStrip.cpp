#include "baking/NoiseStrip.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace vyr::MaterialTranslation::baking
{

namespace
{

/// The lattice cell of a coordinate is the coordinate less a half, rounded to the nearest integer with ties to
/// even. A cell that is no 32-bit integer is the lowest one, with fraction 0.
/// @param period  Cells after which the lattice repeats; 0: never. Cells then lie from -1 to the period.
NoiseAxis latticeAxis(float coordinate, std::uint32_t period = 0)
{
    constexpr float limit = 2147483648.0f;
    const float cell = std::nearbyint(coordinate - 0.5f);
    if (!(cell >= -limit && cell < limit))
    {
        constexpr auto lowest =
            static_cast<std::uint32_t>(std::numeric_limits<std::int32_t>::min());
        return {lowest, lowest + 1U, 0.0f, 0.0f};
    }
    const float f = coordinate - cell;
    const float fade = f * f * f * (f * (f * 6.0f - 15.0f) + 10.0f);
    const auto lower = static_cast<std::uint32_t>(static_cast<std::int32_t>(cell));
    if (period == 0)
        return {lower, lower + 1U, f, fade};
    return {(lower + period) % period, (lower + 1U) % period, f, fade};
}

/// @param cells  Across the image; 0: by the size.
float noiseCoordinate(int pixel, int pixels, int cells, float size)
{
    const float place = static_cast<float>(pixel) / static_cast<float>(pixels);
    return cells > 0 ? place * static_cast<float>(cells) : std::fabs(place) * 100.0f / size;
}

std::uint32_t periodOf(int cells, std::size_t octave)
{
    return static_cast<std::uint32_t>(cells) << octave;
}

} // namespace

NoiseStrip::NoiseStrip(const NoiseField& field, const KernelSet& kernels)
    : _field(field), _kernels(kernels), _phase(latticeAxis(field.phase)),
      _columns(static_cast<std::size_t>(field.octaves)), _sums(std::size_t{bandRows} * noiseColumns)
{
}

void NoiseStrip::moveTo(int column)
{
    for (int i = 0; i < noiseColumns; ++i)
    {
        const float along = noiseCoordinate(column + i, _field.width, _field.cellsX, _field.size);
        float frequency = 1.0f;
        for (std::size_t octave = 0; octave < _columns.size(); ++octave)
        {
            NoiseColumns& columns = _columns[octave];
            const NoiseAxis axis = latticeAxis(along * frequency, periodOf(_field.cellsX, octave));
            columns.cell[i] = axis.cell;
            columns.above[i] = axis.above;
            columns.fraction[i] = axis.fraction;
            columns.fade[i] = axis.fade;
            frequency *= 2.0f;
        }
    }
}

const float* NoiseStrip::sumRows(int yBegin, int yEnd)
{
    std::ranges::fill(_sums, 0.0f);
    float frequency = 1.0f;
    for (std::size_t octave = 0; octave < _columns.size(); ++octave)
    {
        addOctave(octave, frequency, yBegin, yEnd);
        frequency *= 2.0f;
    }
    return _sums.data();
}

void NoiseStrip::addOctave(std::size_t octave, float frequency, int yBegin, int yEnd)
{
    const NoiseColumns& columns = _columns[octave];
    const NoiseOctave adding{_phase, 1.0f / frequency, _field.absolute};
    const auto axisOf = [&](int y)
    {
        const float across = noiseCoordinate(y, _field.height, _field.cellsY, _field.size);
        return latticeAxis(across * frequency, periodOf(_field.cellsY, octave));
    };
    NoiseRow rows[bandRows];
    float* sums = _sums.data();
    NoiseAxis axis = axisOf(yBegin);
    for (int y = yBegin; y < yEnd;)
    {
        const NoiseAxis cell = axis;
        std::size_t count = 0;
        for (; y < yEnd && axis.cell == cell.cell; axis = axisOf(++y))
            rows[count++] = {axis.fraction, axis.fade};
        _kernels.noiseGradients(columns, cell, _phase, _gradients);
        _kernels.addNoiseOctave(_gradients, columns, adding, rows, count, sums);
        sums += count * noiseColumns;
    }
}

} // namespace vyr::MaterialTranslation::baking
