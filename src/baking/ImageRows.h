#pragma once

#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>

#include <OpenImageIO/imagebuf.h>

/// @file
/// What all bakes share: their errors, their images and their threads.
namespace vyr::MaterialTranslation::baking
{

/// An image that cannot be read, baked or written; the text names the file and says why. It stays inside this module:
/// what others call returns a BakeResult or a BakeOutcome.
class BakeError : public std::runtime_error
{
  public:
    BakeError(const std::filesystem::path& file, const std::string& reason);
};

/// Calls `task(yBegin, yEnd)` for blocks of rows that together are all rows of an image, side by side, and
/// returns when all are done. Blocks have at least 1024 pixels (but for the last). They run in
/// the default floating-point environment: a host may have set its threads to flush denormals or to round otherwise,
/// and a bake must not depend on the thread that computes a row.
///
/// @param threads  0: OpenImageIO's default thread count; 1: everything in the calling thread.
/// @throws as forEachTask does.
void forEachRowBlock(int width, int height, int threads,
                     const std::function<void(int yBegin, int yEnd)>& task);

/// Calls `task(i)` for each number below the count, side by side, and returns when all are done. Each thread takes
/// the next number, so tasks may differ in length. They run in the default floating-point environment.
///
/// @throws what the first task threw that failed; the others are done then or not begun.
void forEachTask(int count, int threads, const std::function<void(int)>& task);

/// A new float image with its pixels not initialised; empty (not initialized()) when it has no pixels.
/// @throws std::runtime_error when memory does not hold it.
OIIO::ImageBuf uninitializedImage(const char* name, const OIIO::ImageSpec& spec);

} // namespace vyr::MaterialTranslation::baking
