#pragma once

#include <iosfwd>

#include "assets/Asset.h"

namespace vyr::MaterialTranslation::assets
{

/// Writes four lines that describe a material: class, description, name, and whether it is hidden. A
/// missing "Hidden" counts as not hidden: looking at a material must not make it fail. Every line here is
/// flushed.
void writeMaterialDescription(const Asset& asset, std::ostream& stream);

/// Writes one line: the schema of the texture that drives a property, and the type of a noise.
void writeTextureSchema(const Property& property, std::ostream& stream);

/// Writes one line: the property's name and its plain value, or the texture that drives it.
void writeProperty(const Property& property, std::ostream& stream);

} // namespace vyr::MaterialTranslation::assets
