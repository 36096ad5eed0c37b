#pragma once

#include "materials/GenericMaterial.h"
#include "materials/Translation.h"

namespace vyr::MaterialTranslation::materials
{

/// Adds a material to the translation's document: shader node, material node, the look when it is
/// asked for, and a node graph when textures drive shader inputs.
/// @return false, with the reason in the log and nothing added, when the document is null or one of
///         the names is taken in it.
/// @throws std::filesystem::filesystem_error when a folder for baked images cannot be made.
bool buildStandardSurface(const GenericMaterial& material, const Translation& translation);

} // namespace vyr::MaterialTranslation::materials
