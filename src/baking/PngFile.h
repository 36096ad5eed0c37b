#pragma once

#include <vector>

#include <OpenImageIO/imagebuf.h>

namespace vyr::MaterialTranslation::baking
{

/// Packs a float image as PNG with 8 bits a channel, in strips of rows side by side. The bytes are the same for
/// any number of threads.
///
/// @param image    In memory, 1 to 4 channels, with its origin at 0. "oiio:ColorSpace" is kept when it is "Linear";
///                 PNG has no place for most other attributes.
/// @param threads  0: OpenImageIO's default thread count; 1: everything in the calling thread.
/// @throws std::runtime_error when PNG has no such number of channels.
std::vector<unsigned char> encodePng(const OIIO::ImageBuf& image, int threads = 0);

} // namespace vyr::MaterialTranslation::baking
