#pragma once

#include <cstddef>

#include <OpenImageIO/imagebuf.h>

#include "baking/PngRows.h"

namespace vyr::MaterialTranslation::baking
{

/// How the rows of a picture are filtered and packed.
struct PngPacking
{
    PngFilter filter;
    int level;              ///< libdeflate's
    std::size_t stripBytes; ///< of filtered rows that are packed at a time
};

/// The fastest of a few at which a sample of the image packs as well as, or hardly worse than, by the image
/// library's writer with its default settings.
///
/// No one level is fast and small for all pictures: photographs and noise pack nearly as well at a low level,
/// patterns and smooth pictures need a longer search for repetitions, which a filter that stays the same from row
/// to row makes easier. Sizes decide, not times, so the choice is the same on every machine.
///
/// @param image  As for encodePng.
PngPacking choosePngPacking(const OIIO::ImageBuf& image, int threads);

} // namespace vyr::MaterialTranslation::baking
