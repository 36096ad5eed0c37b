#pragma once

#include <string>
#include <vector>

#include <MaterialXCore/Document.h>

#include "Paths.h"

namespace vyr::cli
{

/// The inputs of a document that name files, in document order.
using ImageInputs = std::vector<MaterialX::InputPtr>;
ImageInputs imageInputs(const MaterialX::Document& document);

/// The files that they name, each once.
std::vector<std::string> imagePaths(const ImageInputs& inputs);

/// Rewrites the paths of images inside the folder relative to it, with forward slashes, so that the
/// folder can be moved as a whole with the documents in it. All other paths stay as they are.
void makeImagePathsRelative(const ImageInputs& inputs, const OutputFolder& folder);

} // namespace vyr::cli
