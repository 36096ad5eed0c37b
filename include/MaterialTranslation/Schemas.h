#pragma once

#include <array>
#include <cstddef>
#include <limits>
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
    /// Unit of the fallback and the range, "meter" or "degree"; empty for values without a unit. Assets may state
    /// any unit of the same kind.
    const char* unit = "";
    /// Values outside are taken as the nearest one inside, with a warning.
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
};

/// A schema and its properties, in the order in which documents of it are best written.
struct SchemaRow
{
    const char* name;
    const char* meaning;
    const PropertyRow* properties;
    std::size_t propertyCount;
};

/// The legacy family of materials, for ConverterOptions::translationPath 1.
VYR_MTLX_API const std::vector<SchemaRow>& legacyMaterials();

/// The procedural textures. Their placement, "texture_RealWorldScaleX" and so on, is not repeated here.
VYR_MTLX_API const std::vector<SchemaRow>& proceduralTextures();

} // namespace vyr::MaterialTranslation
