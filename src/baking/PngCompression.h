#pragma once

#include <OpenImageIO/imageio.h>

#include <vector>

namespace vyr::MaterialTranslation::baking
{
/// Packs 8-bit pixels as PNG, much faster than with the format's default settings where the picture allows it.
///
/// No single setting is fast and small for all pictures, so a few strips of rows are packed with each, fastest
/// first, and the first that is small enough against the default is taken; the default is the last choice. Sizes
/// decide, not times: the file is the same on every machine.
///
/// @param pixels  Rows without gaps, 1 or 3 channels.
/// @param spec    Size, channels and attributes; its format is not used.
/// @throws BakeError with OpenImageIO's reason.
std::vector<unsigned char> encodePng(const unsigned char* pixels, const OIIO::ImageSpec& spec);
} // namespace vyr::MaterialTranslation::baking
