#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include <MaterialTranslation/Schemas.h>

#include "bakes/patterns/Math.h"

/// @file
/// What a pattern is. One file a kind holds three things: the rows of its properties, a record that is made from their
/// values once, and the template that computes pixels.
///
/// A pattern covers its image, which has the coordinates x and y from 0 to 1, x to the right and y upwards. Its
/// opposite edges meet. Each pixel has a share `mix` from 0 to 1 that goes from the first colour to the
/// second one (or is a place on a ramp of stops), and a factor on its first colour.
namespace vyr::MaterialTranslation::bakes
{

/// What the properties of a pattern say: for each row its values, one after the other.
struct PatternValues
{
    /// For a row whose name has a "#" one for each number; else one. Lengths in metres, angles in degrees.
    std::vector<std::vector<std::array<float, 3>>> rows;
};

/// Noise at each pixel that a pattern is made with. It repeats with the image.
struct NoiseLayer
{
    int cellsX; ///< lattice cells across the image, 1 to 4096
    int cellsY;
    int octaves = 1; ///< 1 to 16
    float phase = 0.0f;
    bool absolute = false; ///< absolute values are added, so that the noise lies above 0
};

inline constexpr std::size_t mostNoiseLayers = 2;

/// How patterns give way to two colours, or to more of them on a ramp.
struct ColorStop
{
    float position;
    float color[3];
};

enum class RampStep
{
    Linear,
    Constant,
    Smooth,
};

/// What a pattern computes for some pixels.
template <class L> struct Sample
{
    typename L::Floats mix;
    typename L::Floats factor = L::all(1.0f);
};

/// Some pixels: where they lie, how large one is, and the noise there.
template <class L> struct Pixels
{
    using Floats = typename L::Floats;

    Floats x;
    Floats y;
    float
        firstX; ///< of the first and the last pixel; x grows from one to the next, y is that of all
    float lastX;
    float rowY;
    float sizeX; ///< of a pixel
    float sizeY;
    /// Whether heights are asked for: edges then slope as the pattern says, not just as sharply as pixels can.
    bool heights;
    Floats noise[mostNoiseLayers];
    /// What the pattern knows of these columns: value after value, each this far from the next one.
    const float* columns;
    std::size_t columnStride;

    Floats column(std::size_t value) const { return L::load(columns + value * columnStride); }
};

/// The values of the properties of one pattern, by the places of their rows.
class Values
{
  public:
    explicit Values(const PatternValues& values) : _values(values) {}

    float number(std::size_t row) const { return _values.rows[row].front()[0]; }
    int integer(std::size_t row) const { return static_cast<int>(number(row)); }
    bool boolean(std::size_t row) const { return number(row) != 0.0f; }
    const std::vector<std::array<float, 3>>& list(std::size_t row) const
    {
        return _values.rows[row];
    }

  private:
    const PatternValues& _values;
};

/// Numbers from 0 to 1 without a visible order, the same ones for the same seed.
class Lots
{
  public:
    explicit Lots(int seed) : _state(static_cast<std::uint32_t>(seed)) {}

    float next()
    {
        _state = _state * 1664525U + 1013904223U;
        const std::uint32_t mixed = (_state ^ (_state >> 15U)) * 0x2C1B3C6DU;
        return static_cast<float>((mixed ^ (mixed >> 13U)) >> 8U) / 16777216.0f;
    }

  private:
    std::uint32_t _state;
};

/// Where the lengths of a pattern are not what decides its size on the surface.
inline constexpr std::array<float, 2> noPeriod{0.0f, 0.0f};

/// Noise cells across an image for a size as the noise texture has it, whole ones so that it repeats.
inline int cellsOf(float size)
{
    const float cells = 100.0f / (size > 0.0f ? size : 1.0f) + 0.5f;
    return cells < 1.0f ? 1 : cells < 4096.0f ? static_cast<int>(cells) : 4096;
}

/// Octaves for a number of levels; a fraction counts as a whole one.
inline int octavesOf(float levels)
{
    const int whole = levels > 1.0f ? static_cast<int>(levels) : 1;
    const int octaves = levels > static_cast<float>(whole) ? whole + 1 : whole;
    return octaves < 16 ? octaves : 16;
}

/// Place of a row; another name does not compile.
template <std::size_t N>
consteval std::size_t rowOf(const PropertyRow (&rows)[N], std::string_view name)
{
    for (std::size_t i = 0; i < N; ++i)
        if (rows[i].name == name)
            return i;
    throw "a property without a row";
}

} // namespace vyr::MaterialTranslation::bakes
