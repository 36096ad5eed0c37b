#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <MaterialTranslation/Schemas.h>

#include "materials/StandardSurface.h"

/// @file
/// What the tables of the legacy family are made of. A schema is a table: its rows say which properties it has and what
/// each does; what no row can say is a function of a few lines beside the table.
namespace vyr::MaterialTranslation::materials::legacy
{

using Params = StandardSurfaceParams;
using Field = StandardSurfaceInput::Field;

/// A value that a choice gives to a shader input.
struct Assignment
{
    Field field{};
    std::array<float, 3> value{};
};

/// A property of a procedural texture.
struct Constant
{
    const char* property = nullptr;
    std::array<float, 3> value{};
};

/// A procedural texture whose properties are constant; its colours are heights from 0 to 1.
struct Relief
{
    const char* schema;
    float size;    ///< of the image, metres; 0: the texture knows
    float feature; ///< of what it is made of, metres: a property may ask for another
    float depth;   ///< from the lowest to the highest, metres; 0: only the colour shows it
    Constant constants[6]{};
    /// How much darker than its colour the lowest is.
    float shade = 0.0f;
};

/// What a choice does.
struct Preset
{
    /// Behind the schema's prefix.
    const char* name;
    Assignment sets[4]{};
    /// The relief that it makes; null: none.
    const Relief* relief = nullptr;
    /// What properties of the schema's pattern are without a value of their own.
    Constant shapes[2]{};
};

/// The place of a preset; one that is not there does not compile.
consteval std::size_t placeOf(std::span<const Preset> presets, std::string_view name)
{
    for (std::size_t i = 0; i < presets.size(); ++i)
        if (presets[i].name == name)
            return i;
    throw "no such preset";
}

/// What a row does beside giving its value to a shader input.
enum class Duty
{
    None,
    ColorByObject, ///< the base colour is grey
    Fade,          ///< of the texture of the row before it
    ReliefTexture, ///< a connected texture is the relief
    ReliefAmount,
    ReliefSize, ///< of what the relief of a choice is made of
    Patches,    ///< a share of the surface, which is covered in patches
    CutOut,     ///< a connected texture is the opacity
    NamesColor, ///< the colour of the choice is the material's; where it has none, the row Otherwise
    Otherwise,
};

/// A property. Its name, and those of its choices, follow the schema's prefix, unless they begin with a colon.
struct Row
{
    PropertyRow property;
    Field field{};
    Duty duty = Duty::None;
    std::span<const Preset> presets{};
    /// The property of the schema's pattern that it is.
    const char* pattern = nullptr;
};

/// A pattern that the properties of a material make: it drives the base colour and the relief, or the opacity.
struct Pattern
{
    const char* schema;
    /// It is made when this property is not the first of its choices, or has no value and another one of the pattern's
    /// has.
    const char* property;
    /// What the property is then.
    Constant implied;
    /// The pattern's property that the schema's colour is; null: none.
    const char* color;
    float depth;           ///< of the relief, metres
    const char* inputs[2]; ///< of the shader
    Constant constants[2]{};
};

/// The values of a material's properties, by the names of their rows, for the functions beside the tables.
class LegacyValues;
using Finish = void (*)(Params& params, const LegacyValues& values);

struct Schema
{
    const char* name;
    const char* prefix;
    const char* meaning;
    std::array<std::span<const Row>, 4> groups;
    /// What holds before any property is read.
    std::span<const Assignment> defaults;
    const Pattern* pattern = nullptr;
    Finish finish = nullptr;
};

class LegacyValues
{
  public:
    virtual float number(const char* row) const = 0;
    virtual std::array<float, 3> color(const char* row) const = 0;
    /// Whether the asset has a value for it.
    virtual bool isGiven(const char* row) const = 0;
    /// The place of the choice.
    std::size_t choice(const char* row) const { return static_cast<std::size_t>(number(row)); }

  protected:
    ~LegacyValues() = default;
};

// Facts that the generic table of such schemas shares.

inline constexpr float waterIndex = 1.333f; ///< at 20 degrees Celsius, 589 nm
inline constexpr float highestReflectance =
    0.9f; ///< of a dielectric: an index of 38; a perfect mirror has none

/// The index of refraction of a surface in air by its reflectance at normal incidence R, at most
/// highestReflectance: (1 + sqrt R) / (1 - sqrt R), Fresnel's formula.
float indexOfReflectance(float reflectance);

/// The reflectance of the metal that a choice names by a word in it, linear.
std::optional<Params::Color> metalReflectance(const std::string& choice);

/// What the bottom sends back and what the water leaves of the light, linear.
struct WaterColors
{
    Params::Color base;
    Params::Color transmission;
};
std::optional<WaterColors> waterColors(const std::string& choice);

/// The schemas of each file beside this one, in any order.
extern const std::span<const Schema* const> finishSchemas;
extern const std::span<const Schema* const> glassSchemas;
extern const std::span<const Schema* const> masonrySchemas;
extern const std::span<const Schema* const> metalSchemas;

} // namespace vyr::MaterialTranslation::materials::legacy
