#pragma once

#include <string>
#include <vector>

#include "host/HostTest.h"

namespace vyr::materialtests
{

using namespace hosttests;

/// The value of a property, and what its plain value means to colour management.
enum class Kind
{
    /// A colour for the eye.
    Color,
    /// A colour that is data.
    DataColor,
    Float,
    Vector,
    Boolean,
};

struct Property
{
    const char* name;
    Kind kind;
};

/// What documents have of a family: its shading node and the node's inputs, in order.
struct Family
{
    const char* schema;
    const char* category;
    std::vector<Property> properties;
};

const std::vector<Family>& families();

const char* typeOf(Kind kind);
const char* colorSpaceOf(Kind kind);

/// Gives a property a value that no other has; Booleans are true at odd positions.
/// @param position among the family's properties.
void setPlain(AssetBuilder& builder, const Property& property, int position);

/// The text of that value in documents.
std::string plainText(const Property& property, int position);

/// An asset of a family, without properties yet.
AssetBuilder lyrexBuilder(const char* schema);

/// A bump map of that type ("bumpmap_height_map") over an image.
AssetBuilder bumpBuilder(const std::string& type, const std::string& path = "bump.png");

} // namespace vyr::materialtests
