#pragma once

#include <cstddef>
#include <string>

#include <MaterialXCore/Document.h>

#include "assets/Asset.h"

namespace vyr::MaterialTranslation
{
struct ConverterOptions;
struct Translation;
namespace textures
{
class MaterialFiles;
}
} // namespace vyr::MaterialTranslation

namespace vyr::MaterialTranslation::converter
{

/// Translates an asset into a document with the translator of its schema.
/// @param options an empty output directory is replaced by the system's temporary one.
/// @return the translator's result; false also when the output directory, the name or the asset
///         cannot be used.
bool translate(const assets::IAssetInstance& asset, const std::string& name,
               const MaterialX::DocumentPtr& document, ConverterOptions& options, const Log& log);

/// Copies every file that a "filename" input of the translation names into the material's folder, and
/// lets the input name the copy, by its absolute path.
///
/// A file is copied once however many inputs name it; a copy that has its bytes is left alone. Different files of one name, also if only their case differs, get
/// different names. A user's file is never moved, and never replaced, be it an image of a texture that nothing uses
/// or one that is reached through links; a missing one stays as it is in the document.
/// Files get their names when all are written: when one cannot be, a folder made for it is gone again.
/// @param firstChild of the document that belongs to the translation: another material's files are not
///        gathered again.
/// @throws std::filesystem::filesystem_error "exists", "create_directory", "copy_file", "rename"; the
///         document keeps the values already rewritten.
void gatherTextures(const Translation& translation, std::size_t firstChild);
void gatherTextures(const MaterialX::Document& document, std::size_t firstChild,
                    textures::MaterialFiles& files, const Log& log);

/// The name of an asset's material, a valid MaterialX identifier.
/// @param useIdentifier whether the asset's identifier is part of it even when the asset's English
///        name would do.
std::string materialName(const assets::IAssetInstance& asset, bool useIdentifier);

} // namespace vyr::MaterialTranslation::converter
