#pragma once

#include <cstdint>
#include <string>

#include "assets/Asset.h"
#include "assets/ColorModes.h"
#include "materials/StandardSurface.h"

/// @file
/// The translators of materials, and what their parts ask of each other.
namespace vyr::MaterialTranslation::materials
{

/// Translates a material of "GenericSchema", or of another schema by the generic property table
/// that it carries, into a `standard_surface`.
/// @return false, with the reason in the log and nothing built, when a property cannot be read,
///         when there is no generic property table, when an image cannot be written, or when a name
///         is taken in the document.
/// @throws what the asset library and MaterialX throw, `std::invalid_argument` apart.
bool translateGeneric(const Translation& translation);

/// Translates a material of one of the legacy schemas by its own properties, and one of "GenericSchema" as
/// translateGeneric does.
/// @return as translateGeneric; false also for any other schema.
bool translateLegacy(const Translation& translation);

/// The tint of a hardwood; nothing when it has none or its tint is switched off.
std::optional<assets::DeclaredColor> readTint(const std::string& schema,
                                              const assets::ColorReader& own);

/// Reads the "generic_..." properties of a table into shader values and textures, and warns about
/// what the table says that the document will not.
/// @param asset with the table that holds the generic properties.
/// @throws assets::PropertyError for a property of the wrong type.
StandardSurface readGenericProperties(const assets::Asset& asset, const Translation& translation);

/// Translates a material of one of the "Lyrex" schemas onto the shading node of its family, one input for
/// each property that takes part.
/// @return false, with the reason in the log and nothing built, when the schema is none of them, when a
///         property or texture cannot be read, or when a name is taken in the document.
/// @throws what the asset library and MaterialX throw, `std::invalid_argument` apart.
bool translateLyrex(const Translation& translation);

} // namespace vyr::MaterialTranslation::materials
