#pragma once

#include <OpenImageIO/imagebuf.h>

#include <string>
#include <vector>

namespace vyr::MaterialTranslation::baking
{
/// Bakes four-dimensional gradient noise, thresholded and blended between two colours.
///
/// Attributes of `parameters`, whose width and height are those of the image:
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
///
/// docs/bakes.md has the formulas.
///
/// @param threads  0: OpenImageIO's default thread count; 1: everything in the calling thread. The result is
///                 the same.
/// @return "noise_image": 32-bit float, three channels when both colours are given, else one, with the
///         parameters as used in the attributes "noise_Color1", "noise_Color2", "noise_Size",
///         "noise_ThresholdLow", "noise_ThresholdHigh", "noise_Phase" and "noise_Levels". With another type it
///         is zero throughout and has the error "Unsupported Noise type"; the type goes to standard error.
///         Without pixels, and with an error, when width or height is not greater than 0.
OIIO::ImageBuf bakeNoiseImage(const OIIO::ImageSpec& parameters, int threads = 0);

/// What bakeNoiseImage does not take as it is given, one sentence each.
std::vector<std::string> noiseWarnings(const OIIO::ImageSpec& parameters);
} // namespace vyr::MaterialTranslation::baking
