#pragma once

#include <filesystem>

#include <OpenImageIO/imagebuf.h>

#include <MaterialTranslation/Bakes.h>

#include "baking/ImageRows.h"

namespace vyr::MaterialTranslation::baking
{

/// A height image as read from a file.
struct HeightImage
{
    /// One channel of 32-bit float, origin 0: the first channel of the file, integers scaled from 0 to 1, not
    /// multiplied by alpha.
    OIIO::ImageBuf heights;
    /// What the file says of itself.
    OIIO::ImageSpec source;
};

/// Reads the first image of a png, jpeg, tiff, exr, targa, bmp, hdr, webp, sgi or pnm file. The content decides
/// what it is, not the name (but for targa, which has no mark of its own). The header is checked against the
/// limits before memory is taken.
///
/// @param threads  0: OpenImageIO's default; 1: only the calling thread.
/// @throws BakeError when there is no such file, or it is of another format, too large, empty, or damaged.
HeightImage readHeightImage(const std::filesystem::path& path, const ImageLimits& limits,
                            int threads = 0);

/// @throws BakeError when the image has more pixels than allowed, or none.
/// @param file  named in the message.
void checkPixels(const std::filesystem::path& file, int width, int height,
                 const ImageLimits& limits);

} // namespace vyr::MaterialTranslation::baking
