#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include <MaterialXCore/Document.h>

#include "assets/Log.h"

namespace vyr::MaterialTranslation::converter
{

/// The files that one translation's part of a document refers to.
struct GatheringRequest
{
    const MaterialX::DocumentPtr& document;
    /// Children of the document that were there before the translation: another material's files
    /// are not gathered again.
    std::size_t firstChild = 0;
    /// The material's name, which is that of its folder.
    const std::string& name;
    const std::string& outputDirectory;
    /// Files that the translation itself made. Only these may be moved.
    const std::vector<std::filesystem::path>& baked;
    const Log& log;
};

/// Copies every file that a "filename" input names into output directory / material name, and lets
/// the input name the copy, by its absolute path.
///
/// A file is copied once however many inputs name it; it is not copied again while the copy has its
/// size and is not older. Different files of one name, also if only their case differs, get
/// different names. A user's file is never moved, a missing one stays as it is in the document.
/// When nothing can be written, a folder made for it is gone again.
/// @throws std::filesystem::filesystem_error "exists", "create_directory", "copy_file", "rename"; the
///         document keeps the values already rewritten.
void gatherTextures(const GatheringRequest& request);

} // namespace vyr::MaterialTranslation::converter
