#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <MaterialTranslation/Bakes.h>
#include <OpenImageIO/imagebuf.h>

#include "baking/ImageRows.h"

namespace vyr::MaterialTranslation::baking
{

/// Packs pixels into a file of this format, in memory.
///
/// OpenImageIO's writers do not report every failure to write, and one ends the process; in memory nothing fails.
///
/// @param name    Any name of a file; its extension says the format.
/// @param type    Type of the pixels in memory; that in the file is the nearest to spec.format that it can hold.
/// @param pixels  Rows without gaps.
/// @throws std::runtime_error with OpenImageIO's reason.
std::vector<unsigned char> encodeImage(const std::string& name, OIIO::ImageSpec spec,
                                       OIIO::TypeDesc type, const void* pixels, int threads = 0);

/// A float image as a file of the format that the extension names, at 32-bit float where the format has it,
/// and as ImageBuf::write would: PNG with 8 bits a channel.
///
/// @throws BakeError when the format is not one of ours, or when it cannot hold the image.
std::vector<unsigned char> encodeFor(const std::filesystem::path& destination,
                                     const OIIO::ImageBuf& image, int threads = 0);

/// Writes encodeFor's file, whole or not at all.
///
/// @throws BakeError also when the file cannot be written.
void writeImage(const OIIO::ImageBuf& image, const std::filesystem::path& destination,
                int threads = 0);

/// @throws BakeError when writeImage would refuse the extension.
void checkWritable(const std::filesystem::path& destination);

/// A height image as read from a file.
struct HeightImage
{
    /// 32-bit floats, origin 0: the first channel of the file, or those asked for, integers scaled from 0 to 1,
    /// not multiplied by alpha.
    OIIO::ImageBuf heights;
    /// What the file says of itself.
    OIIO::ImageSpec source;
};

/// Reads the first image of a png, jpeg, tiff, exr, targa, bmp, hdr, webp, sgi or pnm file. The content decides
/// what it is, not the name (but for targa, which has no mark of its own). The header is checked against the
/// limits before memory is taken.
///
/// @param threads   0: OpenImageIO's default; 1: only the calling thread.
/// @param channels  How many of the first channels are kept, where the file has them.
/// @throws BakeError when there is no such file, or it is of another format, too large, empty, or damaged.
HeightImage readHeightImage(const std::filesystem::path& path, const ImageLimits& limits,
                            int threads = 0, int channels = 1);

/// The format of an image file as readHeightImage tells it; empty when it is none of them.
/// @throws BakeError when there is no such file.
std::string_view imageFormat(const std::filesystem::path& path);

/// @throws BakeError when the image has more pixels than allowed, or none.
/// @param file  named in the message.
void checkPixels(const std::filesystem::path& file, int width, int height,
                 const ImageLimits& limits);

} // namespace vyr::MaterialTranslation::baking
