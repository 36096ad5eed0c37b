#pragma once

#include <iosfwd>

#include "assets/AssetView.h"

namespace vyr::MaterialTranslation::assets
{

/// Writes four lines that describe a material: class, description, name, and whether it is hidden.
/// A missing "Hidden" counts as not hidden: looking at a material must not make it fail.
void WriteMaterialDescription(const IAssetInstance& asset, std::ostream& stream);

/// Writes one line: the schema of the texture that drives a property, and the type of a noise.
void WriteTextureSchema(const AssetView& view, const char* name, std::ostream& stream);

/// Writes one line: the property's name and its plain value, or the texture that drives it.
void WriteProperty(const AssetView& view, const char* name, std::ostream& stream);

} // namespace vyr::MaterialTranslation::assets
