#pragma once

#include <OpenImageIO/imagebuf.h>

namespace vyr::MaterialTranslation::baking
{

/// The fastest of a few levels at which a sample of the image packs as well as, or hardly worse than, by the image
/// library's writer with its default settings.
///
/// No one level is fast and small for all pictures: photographs and noise pack nearly as well at a low level,
/// patterns and smooth pictures need a longer search for repetitions. Sizes decide, not times, so the choice is
/// the same on every machine.
///
/// @param image  As for encodePng.
int choosePngLevel(const OIIO::ImageBuf& image, int threads);

} // namespace vyr::MaterialTranslation::baking
