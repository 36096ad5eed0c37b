#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "bakes/MaterialBakes.h"

/// @file
/// How an image that was baked before is known again: its file says what it was baked of.
///
/// Behind the header of the PNG file stands a text, "vyr_bake": the key of the bake, and the hash of all other bytes of
/// the file. So what was cut off or changed since is not taken for the bake.
namespace vyr::MaterialTranslation::bakes
{

/// Raised when a bake gives other pixels than before. A test has the pixels.
inline constexpr int bakeVersion = 2;

/// What decides a bake's pixels, as 32 digits: the version, all its parameters, and the content of its sources, with
/// their extensions, which tell the format of some.
/// @return empty when a source cannot be read, or is larger than the limits let any image be.
std::string keyOf(const MaterialBake& bake, const ImageLimits& limits);

/// Puts a key into the bytes of a file. Other files than PNG stay as they are.
void addKey(std::vector<unsigned char>& file, const std::string& key);

/// Whether the file was baked with this key and nobody has changed it since.
bool hasKey(const std::filesystem::path& file, const std::string& key);

} // namespace vyr::MaterialTranslation::bakes
