#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <MaterialTranslation/Bakes.h>
#include <MaterialTranslation/Export.h>

/// @file
/// Images for pages that show materials.
namespace vyr::MaterialTranslation
{

/// An image as every browser shows it.
struct BrowserImage
{
    bool success = false;
    /// Why there is none, in one line with the file's name; empty after a success.
    std::string message;
    /// Its media type: image/png, image/jpeg or image/webp.
    std::string type;
    std::vector<unsigned char> bytes;
};

/// Makes an image for previews, in memory, with the library of the bakes: the file's own bytes where a browser can show them and they are few, else
/// packed anew, as JPEG, or PNG where there is alpha. Numbers are those of the file, those above 1 are 1.
///
/// @param source   as of bakeNormalMapFile.
/// @param largest  pixels of the longer side; a larger image is made smaller.
VYR_MTLX_API BrowserImage browserImage(const std::filesystem::path& source, int largest = 1024,
                                       const BakeSettings& settings = {});

} // namespace vyr::MaterialTranslation
