#pragma once

#include <filesystem>
#include <string>

#include "assets/AssetView.h"
#include "assets/Log.h"

namespace vyr::MaterialTranslation::textures
{

/// The image that a texture asset's property names, as the asset library resolves it. Warns when it
/// names none, when a document cannot hold the name, and when there is no such file. A reference
/// that the library leaves relative counts as not found: what lies in the process's working folder
/// is none of the material's.
/// @return empty when the texture has no usable image. A file that does not exist stays: the
///         document still says which image belongs there.
/// @throws assets::PropertyError for a property that is no URI.
std::string readImageReference(const assets::AssetView& texture, const char* property,
                               const Log& log);

/// Whether there is a file that a document's image can be taken from.
bool isImageFile(const std::filesystem::path& path);

} // namespace vyr::MaterialTranslation::textures
