#pragma once

/// @file
/// What tests say about MaterialX documents.

#include <string>
#include <vector>

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

/// "category name" of each top-level element, in order.
std::vector<std::string> topLevel(const MaterialX::DocumentPtr& document);

/// One expected input: numbers separated by commas, compared with a relative tolerance of 1e-5 (a 0
/// must be one), any other text exactly.
struct ExpectedInput
{
    std::string name;
    std::string value;
};

/// Whether a top-level node has the inputs with those plain values; others may be there too.
::testing::AssertionResult hasInputs(const MaterialX::DocumentPtr& document,
                                     const std::string& node,
                                     const std::vector<ExpectedInput>& expected);

} // namespace vyr::support
