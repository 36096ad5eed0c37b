#pragma once

#include <string>
#include <vector>

#include "host/HostTest.h"

namespace vyr::materialtests
{

using namespace hosttests;
using Lines = std::vector<std::string>;

/// A property, the type of its input, and the colour space that a plain value of it is in.
struct Property
{
    std::string name;
    std::string type;
    std::string colorSpace;
};

/// What documents have of a family: its shading node and the node's inputs, in order.
struct Family
{
    std::string schema;
    std::string category;
    std::vector<Property> properties;
};

const std::vector<Family>& families();

/// Gives a property a value that no other position has; Booleans are true at odd positions.
/// @return the text of that value in documents.
std::string setPlain(AssetBuilder& builder, const Property& property, int position);

AssetBuilder lyrexBuilder(const std::string& schema);

/// A bump map over an image, of the type "bumpmap_<type>" unless that is empty.
AssetBuilder bumpBuilder(const std::string& type);

/// Each input as "name type", with what it reads and states; none for no node.
Lines linesOf(const mx::NodePtr& node);

} // namespace vyr::materialtests
