#pragma once

#include <OpenImageIO/imagebuf.h>

#include <MaterialTranslation/Bakes.h>

#include "baking/kernels/Kernels.h"

namespace vyr::MaterialTranslation::baking
{

/// Bakes heights into a tangent-space normal image.
///
/// With W x H pixels the strength is W * bumpAmount / realWorldScale[0] * bumpScale[0] along x, likewise with H
/// along y, and 1 along both when the amount is 0. The normal is (-strength x * dX, strength y * dY, 4) divided
/// by its length, dX and dY being the 3 x 3 Sobel gradients with border pixels repeated, and is stored as
/// n * 0.5 + 0.5. A height that is not finite makes its neighbourhood NaN.
///
/// @param height   Heights in channel 0. Float pixels in memory with one channel are read where they are.
/// @param options  The limits are not used. The result is the same for every number of threads.
/// @return "normal_image": of the size of the height image's pixels, origin 0, three channels of 32-bit float,
///         colour space "Linear". Without pixels, and with an error, when the height image has none.
/// @throws std::runtime_error when memory does not hold the result.
OIIO::ImageBuf bakeNormals(const OIIO::ImageBuf& height, const NormalBakeOptions& options,
                           const KernelSet& set = kernels());

/// The same with the parameters as attributes:
///
/// | attribute          | type     | when absent |
/// |--------------------|----------|-------------|
/// | "bump_amount"      | float    | 0           |
/// | "real_world_scale" | float[2] | 1, 1        |
/// | "bump_scale"       | float[2] | 1, 1        |
OIIO::ImageBuf bakeNormalImage(const OIIO::ImageBuf& height, const OIIO::ImageSpec& parameters,
                               int threads = 0);

} // namespace vyr::MaterialTranslation::baking
