#pragma once

#include <array>
#include <cstddef>
#include <limits>
#include <string_view>
#include <vector>

#include <MaterialTranslation/Export.h>

/// @file
/// What the properties of assets are: the registry that the converter reads assets by.
namespace vyr::MaterialTranslation
{

/// The kinds of values, by the property types of the asset library.
enum class PropertyKind
{
    Boolean,
    Integer,
    Scalar,
    Color,
    Choice,
    /// Three scalars.
    Vector,
    /// An image file.
    Uri,
    /// No value: what is connected counts.
    Reference,
};

/// A property of a schema. All texts are in English and live as long as the library.
struct PropertyRow
{
    /// A "#" stands for a number: "gradient_Color#" is "gradient_Color1", "gradient_Color2" and so on, without
    /// a gap.
    const char* name;
    PropertyKind kind;
    const char* meaning;
    /// When the asset lacks it: a linear colour; the first component is that of a number, 0 or 1 that of a
    /// boolean, and the place among the choices that of a choice.
    std::array<float, 3> fallback{};
    /// Unit of the fallback and the range: "meter", "degree" or "candelapersquaremeter"; empty for values without a
    /// unit. Assets may state any unit of the same kind. "length" is one of any unit, and without one in that of the scene.
    const char* unit = "";
    /// The range of a number; rangeOf has that of a colour. What is outside is told of. Legacy materials and
    /// procedural textures take a number as the nearest one inside, all others keep the value.
    float least = -std::numeric_limits<float>::infinity();
    float most = std::numeric_limits<float>::infinity();
    /// Names of the choices, with a blank between them.
    const char* choices = "";
    /// Whether a connected texture drives it.
    bool takesTexture = false;
    /// What it does to the shader, and why; empty where the meaning says it.
    const char* effect = "";
    /// Where figures come from.
    const char* source = "";
    /// False: without a value the asset says nothing, and there is no fallback.
    bool hasFallback = true;
    /// The property without whose value a connected texture does not show; empty for none.
    const char* needs = "";
};

/// Both ends are inside.
struct PropertyRange
{
    float least;
    float most;
};

/// Components of colours are from 0 to 1.
constexpr PropertyRange rangeOf(const PropertyRow& row)
{
    return row.kind == PropertyKind::Color ? PropertyRange{0.0f, 1.0f}
                                           : PropertyRange{row.least, row.most};
}

/// A schema and its properties, in the order in which documents of it are best written.
struct SchemaRow
{
    const char* name;
    const char* meaning;
    const PropertyRow* properties;
    std::size_t propertyCount;
};

/// Schemas of one sort.
struct SchemaGroup
{
    /// For a heading.
    const char* name;
    const std::vector<SchemaRow>* schemas;
    /// Textures have texturePlacement() too.
    bool areTextures;
};

/// All schemas that the converter knows.
VYR_MTLX_API const std::vector<SchemaGroup>& schemaGroups();

/// The schema of a name, case included; null when no group has it.
VYR_MTLX_API const SchemaRow* findSchema(std::string_view name);

/// "GenericSchema". Materials of other schemas may carry its properties in their generic property table.
VYR_MTLX_API const std::vector<SchemaRow>& genericMaterials();

/// The Lyrex families of materials.
VYR_MTLX_API const std::vector<SchemaRow>& lyrexMaterials();

/// Bitmaps, and height and normal maps.
VYR_MTLX_API const std::vector<SchemaRow>& imageTextures();

/// How textures lie on a surface: what the schemas of all of them have beside their own properties.
VYR_MTLX_API const SchemaRow& texturePlacement();

/// The legacy family of materials, for ConverterOptions::translationPath 1.
VYR_MTLX_API const std::vector<SchemaRow>& legacyMaterials();

/// The procedural textures.
VYR_MTLX_API const std::vector<SchemaRow>& proceduralTextures();

} // namespace vyr::MaterialTranslation
