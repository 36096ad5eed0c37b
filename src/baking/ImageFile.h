#pragma once

#include <OpenImageIO/imagebuf.h>

#include <filesystem>
#include <string>
#include <vector>

namespace vyr::MaterialTranslation::baking
{
/// Packs pixels into a file of this format, in memory.
///
/// OpenImageIO's writers do not report every failure to write, and one ends the process; in memory nothing fails.
///
/// @param name    Any name of a file; its extension says the format.
/// @param type    Type of the pixels in memory; that in the file is the nearest to spec.format that it can hold.
/// @param pixels  Rows without gaps.
/// @throws BakeError with OpenImageIO's reason.
std::vector<unsigned char> encodeImage(const std::string& name, OIIO::ImageSpec spec,
                                       OIIO::TypeDesc type, const void* pixels, int threads = 0);

/// Writes a float image to the format that the extension names, at 32-bit float where the format has it, and
/// as ImageBuf::write would: PNG with 8 bits a channel. Written whole or not at all.
///
/// @throws BakeError when the format is not one of ours, when it cannot hold the image, or when the file cannot
///         be written.
void writeImage(const OIIO::ImageBuf& image, const std::filesystem::path& destination,
                int threads = 0);

/// @throws BakeError when writeImage would refuse the extension.
void checkWritable(const std::filesystem::path& destination);
} // namespace vyr::MaterialTranslation::baking
