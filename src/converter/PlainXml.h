#pragma once

#include <optional>
#include <string>

#include <MaterialXCore/Document.h>

namespace vyr::MaterialTranslation::converter
{

/// The bytes that MaterialX's writer makes of a document, without the tree of another library that it builds
/// for them.
/// @return nothing where that is left to MaterialX: a document with comments, blank lines or elements of other
///         files, or with a character that is escaped.
std::optional<std::string> plainXml(const MaterialX::Document& document);

} // namespace vyr::MaterialTranslation::converter
