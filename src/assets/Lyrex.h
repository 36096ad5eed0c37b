#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include <MaterialTranslation/Schemas.h>

/// @file
/// The "Lyrex" schemas: their properties and shading nodes, and the names of their presets.
namespace vyr::MaterialTranslation::assets
{

/// What a colour, or a number, stands for.
enum class ColorMeaning
{
    Unknown,
    /// Display-referred colour.
    Display,
    /// Linear colour, or data.
    Linear,
};

enum class LyrexType
{
    /// A display-referred colour, as most are.
    Color,
    /// Numbers in three channels.
    LinearColor,
    Float,
    Vector,
    Boolean,
};

/// MaterialX's name of the type.
const char* typeName(LyrexType type);

/// A property of a family, and the input of its shading node that has its name.
struct LyrexProperty
{
    const char* name;
    LyrexType type;
    /// Of the numbers that it takes; empty for numbers without a unit.
    const char* unitType = "";
    /// Where documents give bare numbers whatever the asset's unit: the code of the unit that they are
    /// taken for; 0 elsewhere.
    std::uint32_t bareUnit = 0;
};

/// A schema and the shading node that it is written onto.
struct LyrexFamily
{
    const char* schema;
    const char* category;
    /// In the order in which documents have them.
    std::span<const LyrexProperty* const> properties;
    /// What the node's definition says of them, in the same order.
    std::span<const PropertyRow> rows;
    const char* meaning;
};

std::span<const LyrexFamily> lyrexFamilies();

/// The family of a schema, case included; null for any other schema.
const LyrexFamily* findLyrexFamily(std::string_view schema);

/// The meaning of a property's name, in any case, whichever family has it.
ColorMeaning propertyMeaning(std::string_view property);

/// Whether the text starts with "Lyrex-", in any case.
bool hasLyrexPrefix(std::string_view name);

/// Whether the text names a preset as a whole: hasLyrexPrefix, and no "_".
bool isLyrexName(std::string_view name);

/// The number behind the first "-" of a preset's name; 0 when no digits follow.
int lyrexNameNumber(const std::string& name);

/// The class of the number of a preset.
ColorMeaning presetMeaning(int number);

} // namespace vyr::MaterialTranslation::assets
