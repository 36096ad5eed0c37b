#pragma once

#include <filesystem>
#include <stdexcept>

#include <MaterialXCore/Document.h>

namespace vyr::MaterialTranslation::definitions
{

/// A file is no document; the text says where and why, without the file's name.
class UnreadableDocument : public std::runtime_error
{
  public:
    using std::runtime_error::runtime_error;
};

/// Reads a ".mtlx" file and what it includes, and brings it up to MaterialX's current version.
/// @throws UnreadableDocument
MaterialX::DocumentPtr readDocument(const std::filesystem::path& file);

} // namespace vyr::MaterialTranslation::definitions
