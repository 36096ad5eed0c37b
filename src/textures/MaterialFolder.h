#pragma once

#include <filesystem>
#include <string>

namespace vyr::MaterialTranslation::textures
{

/// The folder of a material's baked and gathered images: output directory / material name, absolute.
std::filesystem::path materialFolder(const std::string& outputDirectory, const std::string& name);

/// Makes a material's folder when it is missing.
/// @return whether it was missing.
/// @throws std::filesystem::filesystem_error "create_directory" when it cannot be made, and when a
///         file or a symbolic link stands in its place: nothing may leave the output directory.
bool makeMaterialFolder(const std::filesystem::path& folder);

} // namespace vyr::MaterialTranslation::textures
