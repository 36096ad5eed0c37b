#pragma once

#include <OpenImageIO/imagebuf.h>

namespace vyr::MaterialTranslation::baking
{
/// Bakes heights into a tangent-space normal image.
///
/// With W x H pixels and the attributes of `parameters`
///
/// | attribute          | type     | when absent |
/// |--------------------|----------|-------------|
/// | "bump_amount"      | float    | 0           |
/// | "real_world_scale" | float[2] | 1, 1        |
/// | "bump_scale"       | float[2] | 1, 1        |
///
/// the strength is W * bump_amount / real_world_scale[0] * bump_scale[0] along x, likewise with H along y, and
/// 1 along both when the amount is 0. The normal is (-strength x * dX, strength y * dY, 4) divided by its
/// length, dX and dY being the 3 x 3 Sobel gradients with border pixels repeated, and is stored as n * 0.5 +
/// 0.5. A height that is not finite makes its neighbourhood NaN.
///
/// @param height      Heights in channel 0. Float pixels in memory with one channel are read where they are.
/// @param parameters  Only the three attributes are used.
/// @param threads     0: OpenImageIO's default thread count; 1: everything in the calling thread. The result
///                    is the same.
/// @return "normal_image": of the size of the height image's pixels, origin 0, three channels of 32-bit float,
///         colour space "Linear". Without pixels, and with an error, when the height image has none.
OIIO::ImageBuf bakeNormalImage(const OIIO::ImageBuf& height, const OIIO::ImageSpec& parameters,
                               int threads = 0);
} // namespace vyr::MaterialTranslation::baking
