#pragma once

/// @file
/// What tests say about MaterialX documents.

#include <string>

#include <MaterialXCore/Document.h>

#include <gtest/gtest.h>

namespace vyr::support
{

/// Whether the document validates against MaterialX's data library and the project's own definitions,
/// every node in it has a definition, and it reads back equal from its own text.
::testing::AssertionResult isSound(const MaterialX::DocumentPtr& document);

/// The document as text.
std::string xmlOf(const MaterialX::DocumentPtr& document);

/// An input of a top-level node; null when there is none.
MaterialX::InputPtr inputOf(const MaterialX::DocumentPtr& document, const std::string& node,
                            const std::string& input);

} // namespace vyr::support
