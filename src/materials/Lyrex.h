#pragma once

namespace vyr::MaterialTranslation
{
struct Translation;
}

namespace vyr::MaterialTranslation::materials
{

/// Translates a material of one of the "Lyrex" schemas onto the shading node of its family, one input for
/// each property that takes part.
/// @return false, with the reason in the log and nothing built, when the schema is none of them, when a
///         property or texture cannot be read, or when a name is taken in the document.
/// @throws what the asset library and MaterialX throw, `std::invalid_argument` apart.
bool translateLyrex(const Translation& translation);

} // namespace vyr::MaterialTranslation::materials
