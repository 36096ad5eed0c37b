#pragma once

#include <OpenImageIO/imagebuf.h>

#include <MaterialTranslation/Bakes.h>

#include "baking/NoiseStrip.h"
#include "baking/kernels/Kernels.h"

namespace vyr::MaterialTranslation::baking
{

/// Octave 33 would be a 2^32th of the first: less than half of the last bit of any pixel.
inline constexpr float mostNoiseLevels = 32.0f;

/// Bakes four-dimensional gradient noise, thresholded and blended between two colours. docs/bakes.md has the
/// formulas.
///
/// @param options  The limits are not used. The result is the same for every number of threads.
/// @return "noise_image": 32-bit float, three channels when both colours are given, else one, with the
///         parameters as used in the attributes "noise_Color1", "noise_Color2", "noise_Size",
///         "noise_ThresholdLow", "noise_ThresholdHigh", "noise_Phase" and "noise_Levels". With another type it
///         is zero throughout and has the error "Unsupported Noise type"; the type goes to standard error.
///         Without pixels, and with an error, when width or height is not greater than 0.
/// @throws std::runtime_error when memory does not hold the result.
OIIO::ImageBuf bakeNoise(const NoiseBakeOptions& options, const KernelSet& set = kernels());

/// The same with the parameters as attributes of a specification, whose width and height are those of the image:
///
/// | attribute                                    | type     | meaning, and value when absent             |
/// |----------------------------------------------|----------|--------------------------------------------|
/// | "noise:type"                                 | string   | noise_regular, noise_fractal or            |
/// |                                              |          | noise_turbulence; case does not count      |
/// | "noise:color1", "noise:color2"               | float[3] | colours at v = 0 (black) and v = 1 (white) |
/// | "noise:size"                                 | float    | 0; not greater than 0 is 1                 |
/// | "noise:thresholdLow", "noise:thresholdHigh"  | float    | 0                                          |
/// | "noise:phase"                                | float    | 0                                          |
/// | "noise:levels"                               | float    | 0; not greater than 0 is 1, above 32 is 32 |
OIIO::ImageBuf bakeNoiseImage(const OIIO::ImageSpec& parameters, int threads = 0);

/// Computes whole rows of a noise image; a pixel depends on its place only, not on what else is computed.
///
/// @param pixels  The pixel (0, yBegin) of the image, `shade.channels` floats a pixel, rows without gaps.
void bakeNoiseRows(const NoiseField& field, const NoiseShade& shade, const KernelSet& kernels,
                   int yBegin, int yEnd, float* pixels);

} // namespace vyr::MaterialTranslation::baking
