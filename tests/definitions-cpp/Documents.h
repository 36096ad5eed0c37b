#pragma once

/// @file
/// Documents as the converter writes them, for the tests of definitions.

#include <string>
#include <vector>

#include <MaterialXCore/Document.h>

namespace vyr::tests
{

struct Sample
{
    std::string name;
    MaterialX::DocumentPtr document;
};

/// One document of each shading node, with a graph of textures and every unit and colour space that
/// the converter writes.
std::vector<Sample> samples();

/// A document with `content` between the tags of its root.
MaterialX::DocumentPtr documentOf(const std::string& content);

} // namespace vyr::tests
