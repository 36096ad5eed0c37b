#pragma once

#include <vector>

#include "baking/kernels/Kernels.h"

namespace vyr::MaterialTranslation::baking
{

/// A noise image as numbers: where its pixels lie in noise space and what is added up there.
struct NoiseField
{
    int width;  ///< of the whole image, pixels
    int height; ///< of the whole image, pixels
    float size; ///< greater than 0; the image is 100 / size lattice cells wide and high
    /// Where not 0, the image is that many cells wide instead, 1 to 4096, and repeats: with the octaves
    /// below 2^31 cells in all.
    int cellsX;
    int cellsY;
    float phase; ///< fourth coordinate
    int octaves; ///< how often noise is added, each time at twice the frequency and half the height
    bool absolute; ///< absolute values are added (turbulence)
};

/// The sums of all octaves in one strip of columns.
class NoiseStrip
{
  public:
    /// Rows whose sums are kept while the octaves are added up one after the other.
    static constexpr int bandRows = 64;

    /// Borrows both.
    NoiseStrip(const NoiseField& field, const KernelSet& kernels);

    /// The first of the strip's noiseColumns columns.
    void moveTo(int column);

    /// Adds up at most bandRows rows; row i of the result starts at i * noiseColumns.
    const float* sumRows(int yBegin, int yEnd);

  private:
    void addOctave(std::size_t octave, float frequency, int yBegin, int yEnd);

    const NoiseField& _field;
    const KernelSet& _kernels;
    NoiseAxis _phase;
    std::vector<NoiseColumns> _columns;
    NoiseGradients _gradients;
    std::vector<float> _sums;
};

} // namespace vyr::MaterialTranslation::baking
