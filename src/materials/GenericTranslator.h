#pragma once

#include "materials/Translation.h"

namespace vyr::MaterialTranslation::materials
{

/// Translates a material of "GenericSchema", or of another schema by the generic property table
/// that it carries, into a `standard_surface`.
/// @return false, with the reason in the log and nothing built, when a property cannot be read,
///         when there is no generic property table, or when a name is taken in the document.
/// @throws what the asset library and MaterialX throw, `std::invalid_argument` apart.
bool translateGeneric(const Translation& translation);

} // namespace vyr::MaterialTranslation::materials
