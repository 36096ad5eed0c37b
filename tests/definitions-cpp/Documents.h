#pragma once

#include <map>
#include <string>
#include <vector>

#include <MaterialXCore/Document.h>

#include <MaterialTranslation/Validation.h>

namespace vyr::tests
{

/// By shading node, a document of it with a graph of all textures, and every input with a value, a
/// unit and a colour space as the converter writes them.
std::map<std::string, MaterialX::DocumentPtr> samples();

/// The text of a document with `content` between the tags of its root, and the document.
std::string textOf(const std::string& content);
MaterialX::DocumentPtr documentOf(const std::string& content);

/// "path: code: text" of each message.
std::vector<std::string> lines(const std::vector<MaterialTranslation::ValidationMessage>& messages);

} // namespace vyr::tests
