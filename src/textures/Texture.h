#pragma once

#include <exception>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <MaterialXCore/Document.h>

#include "assets/Asset.h"
#include "bakes/MaterialBakes.h"

/// @file
/// Textures that drive properties of a material, from the asset to the node, in three stages: all are
/// read, then those are baked for which there is no node, then the rules of the material ask which of its
/// properties are textured. After the second stage a texture is a record with a file, or there is none.
namespace vyr::MaterialTranslation
{
struct Translation;
} // namespace vyr::MaterialTranslation

namespace vyr::MaterialTranslation::textures
{

/// What a texture is for.
enum class TextureRole
{
    /// It gives the value of a colour or number.
    Value,
    /// It gives the height of the surface's relief.
    Relief,
    /// The same, of any kind.
    AnyRelief,
    /// It drives a property of the "Lyrex" family: a bitmap for its value, or a height or normal map.
    Lyrex,
};

/// A number or pair of numbers with the unit that the asset declares; without one, both names of the unit
/// are empty.
template <class Value> struct Measured
{
    Value value{};
    base::Unit unit;
};

/// How a texture asset places its image on the surface.
struct Placement
{
    /// Shift and size of the image on the surface.
    Measured<assets::Vector2> realWorldOffset;
    Measured<assets::Vector2> realWorldScale;
    /// Shift and scale in texture space.
    assets::Vector2 uvOffset{};
    assets::Vector2 uvScale{};
    bool repeatU = false;
    bool repeatV = false;
    Measured<float> rotation;
};

/// What a bitmap does with the values of its image: amount x (invert ? 1 - image : image).
struct Tone
{
    float amount = 1.0f;
    bool invert = false;
};

/// The strength of a relief, and the input of the node that states it.
struct Strength
{
    const char* input;
    Measured<float> measured;
};

/// A texture node: an image file and how the node reads it. Inputs that have no value are not written.
struct Texture
{
    const char* category;
    std::string file;
    std::string colorSpace;
    std::optional<Placement> placement{};
    /// Size on the surface of a texture that has no other placement.
    std::optional<Measured<assets::Vector2>> realWorldScale{};
    std::optional<Tone> tone{};
    std::optional<Strength> strength{};
};

/// An image that has to be computed before a node can read it.
struct Bake
{
    /// Name of the file in the material's folder.
    std::string fileName;
    bakes::MaterialBake record;
};

/// What a texture asset says: a texture, and what it still needs.
struct TextureReading
{
    Texture texture;
    std::optional<Bake> bake{};
};

/// A property of the material and the texture that is connected to it.
struct TextureRequest
{
    const Translation& translation;
    const assets::Asset& material;
    const assets::Asset& texture;
    /// The material's property, which also names the texture's node.
    const char* property;
    TextureRole role;
    /// MaterialX's name of the property's value type; empty where it does not count.
    const char* type;
    /// Strength of the material's relief.
    float bumpAmount;
    /// For messages about the material's property.
    const Log& log;
    /// For messages about the texture's properties.
    const Log& textureLog;
};

/// A procedural texture that a material's own properties make, without a texture asset.
struct MadePattern
{
    struct Link
    {
        const char* patternProperty;
        std::string materialProperty;
    };
    struct Constant
    {
        const char* patternProperty;
        std::array<float, 3> value;
    };

    const char* schema;
    /// What the material has no value for is constant, or the pattern's own fallback.
    std::vector<Link> links;
    std::vector<Constant> constants;
    /// What the image covers, in metres, where neither pattern nor material say.
    float size = 1.0f;
    /// Larger than that, or smaller, with the depth.
    float stretch = 1.0f;
    /// From the lowest to the highest of a relief, metres.
    float depth = 0.0f;
};

/// The textures of one material.
class TextureSet
{
  public:
    TextureSet(const assets::Asset& material, const Translation& translation)
        : _material(material), _translation(translation)
    {
    }

    /// First stage: reads the texture that is connected to a property, if one is. What is wrong with it
    /// is told when it is taken, so that messages come in the order of the rules.
    /// @param type MaterialX's name of the property's value type; empty where it does not count.
    /// @param bumpAmount strength of the material's relief.
    void read(const char* property, TextureRole role, const char* type = "",
              float bumpAmount = 0.0f);

    /// First stage: makes a texture of the material's own properties.
    /// @param name of the node, and for take.
    void make(const char* name, TextureRole role, const char* type, float bumpAmount,
              const MadePattern& pattern);

    /// Second stage: bakes what has to be baked. A texture of which nothing comes counts as none.
    /// @throws assets::PropertyError with DiagnosticCode::ImageNotWritten when a result cannot be written.
    void bake();

    /// Whether a usable texture drives the property.
    bool isUsable(const assets::Property& property) const;

    /// Takes the texture that drives a property, with what there is to tell about it.
    /// @return nothing when there is none, or none that can be used: the plain value then holds.
    /// @throws assets::PropertyError, with the property's path, for a texture's property of the wrong
    ///         type; "Unhandled Schema <schema>" for a schema that the "Lyrex" family does not know.
    std::optional<Texture> take(const assets::Property& property);

    /// Takes a texture that was made.
    std::optional<Texture> take(const std::string& name);

    /// Drops the images of textures that nobody took.
    void dropUnused();

  private:
    struct Entry
    {
        std::string property;
        TextureRole role{};
        std::optional<TextureReading> reading;
        std::vector<Diagnostic> messages;
        std::exception_ptr error;
        bool taken = false;
    };

    std::optional<Texture> takeFrom(Entry& entry);
    void readInto(Entry& entry, const assets::Property& property, TextureRole role,
                  const char* type, float bumpAmount);
    void dropBake(Entry& entry, const std::string& reason);
    void bakeInto(Entry& entry, const std::vector<std::string>& images);
    const Entry* find(const assets::Property& property) const;

    const assets::Asset& _material;
    const Translation& _translation;
    std::vector<Entry> _entries;
};

/// Gives the images that were baked for a material their names in its folder, once nothing else can fail.
/// @throws assets::PropertyError with DiagnosticCode::ImageNotWritten
void publishBakes(const Translation& translation);

/// The schemas of the kinds of textures that are known in some role.
std::vector<std::string> textureSchemas();

/// Adds a texture's node and its output to a node graph.
/// @param type MaterialX's name of the value type.
MaterialX::OutputPtr addTexture(const Texture& texture, const MaterialX::NodeGraphPtr& graph,
                                const std::string& name, const std::string& type);

} // namespace vyr::MaterialTranslation::textures
