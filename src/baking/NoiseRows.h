#pragma once

#include "baking/kernels/Kernels.h"

namespace vyr::MaterialTranslation::baking
{
/// A noise image as numbers: where its pixels lie in noise space and what is added up there.
struct NoiseField
{
    int width;   ///< of the whole image, pixels
    int height;  ///< of the whole image, pixels
    float size;  ///< greater than 0; the image is 100 / size lattice cells wide and high
    float phase; ///< fourth coordinate
    int octaves; ///< how often noise is added, each time at twice the frequency and half the height
    bool absolute; ///< absolute values are added (turbulence)
};

/// Computes whole rows of a noise image; a pixel depends on its place only, not on what else is computed.
///
/// @param pixels  The pixel (0, yBegin) of the image, `shade.channels` floats a pixel, rows without gaps.
void bakeNoiseRows(const NoiseField& field, const NoiseShade& shade, const KernelSet& kernels,
                   int yBegin, int yEnd, float* pixels);
} // namespace vyr::MaterialTranslation::baking
