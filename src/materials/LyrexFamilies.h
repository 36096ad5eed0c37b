#pragma once

#include <span>
#include <string_view>

namespace vyr::MaterialTranslation::materials
{

enum class LyrexType
{
    Color,
    Float,
    Vector,
    Boolean,
};

/// MaterialX's name of the type.
const char* typeName(LyrexType type);

/// An input of a family's shading node. Its name is also that of the asset's property.
struct LyrexInput
{
    const char* name;
    LyrexType type;
    /// Of the numbers that it takes; empty for numbers without a unit.
    const char* unitType = "";
};

/// A schema of the "Lyrex" family and the shading node that it is written onto.
struct LyrexFamily
{
    const char* schema;
    const char* category;
    /// In the order in which documents have them.
    std::span<const LyrexInput> inputs;
};

std::span<const LyrexFamily> lyrexFamilies();

/// The family of a schema; null for any other schema.
const LyrexFamily* findLyrexFamily(std::string_view schema);

} // namespace vyr::MaterialTranslation::materials
