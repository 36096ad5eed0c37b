#pragma once

#include <string>
#include <vector>

#include <MaterialXCore/Document.h>

#include "Paths.h"

namespace vyr::cli
{

/// The image files that a document names, in document order, each once.
std::vector<std::string> imagePaths(const MaterialX::Document& document);

/// Rewrites the paths of images inside the folder relative to it, with forward slashes, so that the
/// folder can be moved as a whole with the documents in it. All other paths stay as they are.
void makeImagePathsRelative(MaterialX::Document& document, const OutputFolder& folder);

} // namespace vyr::cli
