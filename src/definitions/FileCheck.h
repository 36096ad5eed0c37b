#pragma once

#include <filesystem>
#include <vector>

#include <MaterialXCore/Document.h>
#include <MaterialXFormat/File.h>

#include <MaterialTranslation/Validation.h>

namespace vyr::MaterialTranslation::definitions
{

/// The folders that a document's relative file names are looked up in: that of its own file, then the
/// caller's.
MaterialX::FileSearchPath searchPathOf(const MaterialX::Document& document,
                                       const std::vector<std::filesystem::path>& folders);

/// Reports a file name that leads nowhere. Prefixes and tokens are applied as MaterialX does; names with
/// places for the renderer to fill in, such as "<UDIM>", are not looked up.
void checkFile(const MaterialX::ValueElement& value, const MaterialX::FileSearchPath& searchPath,
               std::vector<ValidationMessage>& messages);

} // namespace vyr::MaterialTranslation::definitions
