#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "bakes/patterns/Kinds.h"

/// @file
/// The pixel kernels: plain rows of floats in, plain rows of floats out.
///
/// There is one set of kernels for each instruction set. All sets are instances of the same templates and
/// give the same bits: every operation is a single IEEE operation on 32-bit floats in a fixed order, and
/// nothing is fused. Rows need no alignment; input and output must not overlap. Kernels expect the default
/// floating-point environment (round to nearest, denormals kept).
namespace vyr::MaterialTranslation::baking
{

using namespace bakes;

/// Three neighbouring rows of heights. At the border of the image the row itself stands in for the missing one.
struct HeightRows
{
    const float* above;
    const float* centre;
    const float* below;
};

/// Factors from Sobel gradient to slope, along the columns (x) and along the rows (y).
struct SlopeStrength
{
    float x;
    float y;
};

/// Columns that the noise kernels work on at a time: small enough that the gradients stay in the nearest cache.
inline constexpr int noiseColumns = 256;

/// Where neighbouring pixels lie between the lattice points of one octave, on the axis along a row.
struct alignas(64) NoiseColumns
{
    std::uint32_t cell[noiseColumns]; ///< lower lattice integer
    std::uint32_t
        above[noiseColumns];      ///< upper one: the next, or where the noise repeats the first
    float fraction[noiseColumns]; ///< offset from it, 0 to 1
    float fade[noiseColumns];     ///< fade weight of the fraction
};

/// One lattice axis that is constant for the pixels in question.
struct NoiseAxis
{
    std::uint32_t cell;
    std::uint32_t above;
    float fraction;
    float fade;
};

/// The gradients at the corners around each column. The product of gradient and offset at a corner is
/// (across * dx + along) + rest, where dx is the offset on the axis across the rows.
struct alignas(64) NoiseGradients
{
    /// Bit 0: upper across the rows, bit 1: upper along, bit 2: upper phase.
    static constexpr int corners = 8;
    float across[corners][noiseColumns];
    float along[corners][noiseColumns];
    float rest[corners][noiseColumns];
};

/// Where a row lies between two rows of the lattice.
struct NoiseRow
{
    float fraction; ///< offset on the axis across the rows
    float fade;     ///< its fade weight
};

/// How one octave is added up.
struct NoiseOctave
{
    NoiseAxis phase; ///< the fourth axis
    float scale;     ///< 1 / frequency, a power of two
    bool absolute;   ///< the absolute value is added (turbulence)
};

/// From noise to pixels.
struct NoiseShade
{
    bool centred;        ///< the noise lies around 0: v = (noise + 1) * 0.5; else v = noise
    float thresholdLow;  ///< below it v is 0
    float thresholdHigh; ///< above it v is 1
    int channels;        ///< 1: the pixel is v; 3: it is color1 * (1 - v) + color2 * v
    float color1[3];
    float color2[3];
};

/// Neighbouring pixels of one row of a pattern, noiseColumns of them.
struct PatternStrip
{
    const float* x; ///< of the pixels' middles, from 0 to 1
    float y;
    float sizeX; ///< of a pixel
    float sizeY;
    bool heights;
    const float* noise[mostNoiseLayers];
    const float*
        columns; ///< what the pattern knows of the columns, noiseColumns of each value; null: nothing
};

/// From a pattern's shares to pixels.
struct PatternShade
{
    int channels; ///< 1 or 3; with one, colours count by their first component
    bool srgb;    ///< pixels of three channels become the codes of sRGB
    RampStep step;
    const ColorStop* stops; ///< a ramp; null: there are two colours
    std::size_t stopCount;
    float colors[2][3];
    /// For each channel the values of the pixels in place of a colour; null: none.
    const float* pixels[2][3];
};

/// The kernels for one instruction set.
struct KernelSet
{
    const char* name;

    /// Encoded normals of one row: `width` heights give `3 * width` floats, clamped at both ends.
    void (*normalRow)(const HeightRows& heights, std::size_t width, const SlopeStrength& strength,
                      float* rgb);

    /// Gradients of all noiseColumns columns between the two lattice rows of `row`.
    void (*noiseGradients)(const NoiseColumns& columns, const NoiseAxis& row,
                           const NoiseAxis& phase, NoiseGradients& gradients);

    /// Adds one octave to all noiseColumns values of each of some rows between the same two lattice rows.
    void (*addNoiseOctave)(const NoiseGradients& gradients, const NoiseColumns& columns,
                           const NoiseOctave& octave, const NoiseRow* rows, std::size_t count,
                           float* sums);

    /// Turns noiseColumns noise values into pixels; the first `count` of them are stored.
    void (*shadeNoise)(const float* noise, std::size_t count, const NoiseShade& shade,
                       float* pixels);

    /// Turns shares and factors into pixels; the first `count` of noiseColumns are stored.
    void (*shadePattern)(const float* mix, const float* factor, std::size_t count,
                         const PatternShade& shade, float* pixels);

    /// Turns codes of sRGB into linear values.
    void (*decodeSrgb)(float* values, std::size_t count);

    /// Computes shares and factors of a strip, for each kind in the order of PatternKinds.
    using PatternRow = void (*)(const void* pattern, const PatternStrip& strip, float* mix,
                                float* factor);
    PatternRow patternRows[patternKindCount];

    /// Computes what is the same for all pixels of a column, for a strip that has its x already.
    using PatternColumns = void (*)(const void* pattern, const float* x,
                                    std::vector<float>& values);
    PatternColumns patternColumns[patternKindCount];
};

/// The sets that this processor can run, slowest first; the first is the portable one.
const std::vector<KernelSet>& kernelSets();

/// The set that the bakes use: the last of kernelSets().
const KernelSet& kernels();

} // namespace vyr::MaterialTranslation::baking
