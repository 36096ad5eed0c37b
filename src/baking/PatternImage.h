#pragma once

#include <OpenImageIO/imagebuf.h>

#include <MaterialTranslation/Bakes.h>

#include "bakes/MaterialBakes.h"
#include "baking/kernels/Kernels.h"

namespace vyr::MaterialTranslation::baking
{

/// What of a pattern is baked.
enum class PatternPixels
{
    Color,   ///< three channels, linear
    Srgb,    ///< three channels, the codes of sRGB
    Number,  ///< one channel
    Heights, ///< one channel
};

/// Bakes a pattern into 32-bit floats. docs/bakes.md has the formulas.
///
/// @param settings  The result is the same for every number of threads.
/// @param dropped  Takes what images in place of colours cannot be read; null: nobody wants to know.
/// @throws std::runtime_error when memory does not hold the result.
OIIO::ImageBuf bakePattern(const Pattern& bake, PatternPixels pixels, const BakeSettings& settings,
                           const KernelSet& set = kernels(),
                           std::vector<DroppedColorImage>* dropped = nullptr);

} // namespace vyr::MaterialTranslation::baking
