#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include <MaterialTranslation/Schemas.h>

#include "bakes/Patterns.h"

/// @file
/// The procedural textures as their properties say, from whatever holds these.
namespace vyr::MaterialTranslation::textures
{

/// The place of a schema among proceduralTextures(), which is that of its kind among bakes::PatternKinds.
std::optional<std::size_t> findPattern(std::string_view schema);

/// What the image of a pattern covers, in metres; nothing where its properties do not say.
std::optional<std::array<float, 2>> patternPeriod(std::size_t kind,
                                                  const bakes::PatternValues& values);

/// The rows of a pattern's two colours; where it has a ramp, the number of its rows.
std::array<std::size_t, 2> patternColors(std::size_t kind);

/// Whether all heights of the pattern are one.
bool isFlat(std::size_t kind, const bakes::PatternValues& values);

/// Takes a value that is out of its row's range as the nearest inside.
/// @return what was done, in words; empty when nothing was.
std::string takeInside(const PropertyRow& row, std::array<float, 3>& value);

/// Numbered properties go together, as the colours and positions of stops.
/// @return what is not as many as the first of them, in words; empty when all are, or are not there at all.
std::string unevenNumbers(const SchemaRow& schema, const bakes::PatternValues& values);

/// The place of a choice in its row; nothing for one that is not there.
std::optional<std::size_t> choicePlace(const PropertyRow& row, std::string_view choice);

/// The name with a number in place of the "#".
std::string numbered(const PropertyRow& row, std::size_t number);
bool isNumbered(const PropertyRow& row);

} // namespace vyr::MaterialTranslation::textures
