#pragma once

#include <OpenImageIO/imagebuf.h>

#include <functional>

namespace vyr::MaterialTranslation::baking
{
/// Calls `task(yBegin, yEnd)` for blocks of rows that together are all rows of an image, side by side, and
/// returns when all are done. Blocks have at least 1024 pixels (but for the last). Tasks run in the default
/// floating-point environment and must not throw.
///
/// @param threads  0: OpenImageIO's default thread count; 1: everything in the calling thread.
void forEachRowBlock(int width, int height, int threads,
                     const std::function<void(int yBegin, int yEnd)>& task);

/// A new float image with its pixels not initialised; empty (not initialized()) when it has no pixels.
OIIO::ImageBuf uninitializedImage(const char* name, const OIIO::ImageSpec& spec);
} // namespace vyr::MaterialTranslation::baking
