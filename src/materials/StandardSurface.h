#pragma once

#include <algorithm>
#include <array>
#include <functional>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include <MaterialXCore/Document.h>
#include <MaterialXCore/Types.h>

#include "assets/ColorModes.h"
#include "textures/Texture.h"

namespace vyr::MaterialTranslation::materials
{

/// One value for each input of MaterialX's `standard_surface`, in the model's order and at its
/// defaults, except that the two normals and the tangent are (1, 1, 1): they are never written as
/// plain values, only driven by a texture.
struct StandardSurfaceParams
{
    using Color = MaterialX::Color3; ///< linear Rec.709 unless a document says otherwise

    float base = 1.0f;
    Color base_color{0.8f, 0.8f, 0.8f};
    float diffuse_roughness = 0.0f;
    float metalness = 0.0f;
    float specular = 1.0f;
    Color specular_color{1.0f, 1.0f, 1.0f};
    float specular_roughness = 0.2f;
    float specular_IOR = 1.5f;
    float specular_anisotropy = 0.0f;
    float specular_rotation = 0.0f;
    float transmission = 0.0f;
    Color transmission_color{1.0f, 1.0f, 1.0f};
    float transmission_depth = 0.0f;
    Color transmission_scatter{0.0f, 0.0f, 0.0f};
    float transmission_scatter_anisotropy = 0.0f;
    float transmission_dispersion = 0.0f;
    float transmission_extra_roughness = 0.0f;
    float subsurface = 0.0f;
    Color subsurface_color{1.0f, 1.0f, 1.0f};
    Color subsurface_radius{1.0f, 1.0f, 1.0f};
    float subsurface_scale = 1.0f;
    float subsurface_anisotropy = 0.0f;
    float sheen = 0.0f;
    Color sheen_color{1.0f, 1.0f, 1.0f};
    float sheen_roughness = 0.3f;
    float coat = 0.0f;
    Color coat_color{1.0f, 1.0f, 1.0f};
    float coat_roughness = 0.1f;
    float coat_anisotropy = 0.0f;
    float coat_rotation = 0.0f;
    float coat_IOR = 1.5f;
    std::array<float, 3> coat_normal{1.0f, 1.0f, 1.0f};
    float coat_affect_color = 0.0f;
    float coat_affect_roughness = 0.0f;
    float thin_film_thickness = 0.0f;
    float thin_film_IOR = 1.5f;
    float emission = 0.0f;
    Color emission_color{1.0f, 1.0f, 1.0f};
    Color opacity{1.0f, 1.0f, 1.0f};
    bool thin_walled = false;
    MaterialX::Vector3 normal{1.0f, 1.0f, 1.0f};
    MaterialX::Vector3 tangent{1.0f, 1.0f, 1.0f};
    std::string category = "standard_surface";
};

/// A shader input that documents have: where its plain value comes from, and its type when a texture drives
/// it.
struct StandardSurfaceInput
{
    using Params = StandardSurfaceParams;
    using Field =
        std::variant<std::monostate, float Params::*, Params::Color Params::*, bool Params::*>;

    const char* name;
    /// Without a field the input is only written when a texture drives it.
    Field field;
    const char* type = "float";
    /// Whether documents leave it out at its default.
    bool onlyWhenSet = false;
};

// The inputs in the order in which documents have them: the four that make the material's nature, then
// the shading model's own order.
inline constexpr StandardSurfaceInput standardSurfaceInputs[] = {
    {"base", &StandardSurfaceParams::base},
    {"metalness", &StandardSurfaceParams::metalness},
    {"base_color", &StandardSurfaceParams::base_color, "color3"},
    {"specular", &StandardSurfaceParams::specular},
    {"diffuse_roughness", &StandardSurfaceParams::diffuse_roughness},
    {"specular_roughness", &StandardSurfaceParams::specular_roughness},
    {"specular_IOR", &StandardSurfaceParams::specular_IOR},
    {"transmission", &StandardSurfaceParams::transmission},
    {"transmission_color", &StandardSurfaceParams::transmission_color, "color3"},
    {"subsurface", &StandardSurfaceParams::subsurface},
    {"coat", &StandardSurfaceParams::coat},
    {"coat_roughness", &StandardSurfaceParams::coat_roughness},
    {"coat_IOR", &StandardSurfaceParams::coat_IOR},
    {"emission", &StandardSurfaceParams::emission},
    {"emission_color", &StandardSurfaceParams::emission_color, "color3"},
    {"opacity", &StandardSurfaceParams::opacity, "color3"},
    {"thin_walled", &StandardSurfaceParams::thin_walled},
    {"specular_anisotropy", &StandardSurfaceParams::specular_anisotropy, "float", true},
    {"sheen", &StandardSurfaceParams::sheen, "float", true},
    {"sheen_color", &StandardSurfaceParams::sheen_color, "color3", true},
    {"normal", std::monostate(), "vector3"},
};

/// The name of an input that documents have; any other name does not compile.
consteval const char* shaderInput(std::string_view name)
{
    const auto* found = std::ranges::find(standardSurfaceInputs, name, &StandardSurfaceInput::name);
    return found != std::end(standardSurfaceInputs) ? found->name : throw "an input without a row";
}

/// MaterialX's name of the type of such an input.
inline const char* shaderInputType(std::string_view name)
{
    return std::ranges::find(standardSurfaceInputs, name, &StandardSurfaceInput::name)->type;
}

/// A texture, and the property that names its node.
struct DrivingTexture
{
    std::string property;
    textures::Texture texture;
};

/// All that a document of a `standard_surface` material is built from.
struct StandardSurface
{
    StandardSurfaceParams params;
    /// By the name of the shader input that each drives.
    std::map<std::string, DrivingTexture, std::less<>> textures;
    /// The colour that tints the texture of the base colour, as the asset states it.
    std::optional<assets::DeclaredColor> tint;
};

/// Gives the output that drives a shader input; null where its plain value counts.
using ShaderDriver = std::function<MaterialX::OutputPtr(const StandardSurfaceInput& input)>;

/// Writes the inputs of a `standard_surface` node.
/// @param colorSpace of the plain colours.
void writeStandardSurface(const MaterialX::NodePtr& shader, const StandardSurfaceParams& params,
                          const char* colorSpace, const ShaderDriver& driver);

/// What ends the name of the node graph of a standard surface.
inline constexpr const char* standardSurfaceGraphSuffix = "_nodegraph";

/// Adds a material to the translation's document: shader node, material node, the look when it is
/// asked for, and a node graph when textures drive shader inputs. The skeleton must be possible.
void buildStandardSurface(const StandardSurface& material, const Translation& translation);

/// Translates a material that becomes a `standard_surface`: builds what is read.
/// @param read  May throw assets::PropertyError.
/// @return false, with the reason in the log and nothing built, when a name is taken or reading fails.
bool translateStandardSurface(const Translation& translation,
                              const std::function<StandardSurface()>& read);

/// Where the elements of a material go, and what they are called after. Everything is borrowed.
struct MaterialPlace
{
    const MaterialX::DocumentPtr& document;
    const std::string& name;
    bool addLook;
    const Log& log;
};

/// The place of a translation's material.
MaterialPlace placeOf(const Translation& translation);

/// The elements that every material has, whatever its shading model, and that a translator fills.
class Skeleton
{
  public:
    /// Whether the elements can be added: there is a document, and their names are free in it. To be
    /// asked before anything is baked; the log says why not.
    /// @param graphSuffix ends the name of the node graph of the material's textures.
    static bool isPossible(const MaterialPlace& place, const char* graphSuffix);

    /// Adds shader node, material node and, when the options ask for it, the look that assigns the
    /// material to all geometry, and sets the document's colour space, linear Rec.709. It must be
    /// possible.
    /// @param category of the shader node, such as "standard_surface".
    /// @param assetId of the asset that the material is made from; empty when there is none.
    Skeleton(const MaterialPlace& place, const std::string& category, const char* graphSuffix,
             const std::string& assetId = {});

    const MaterialX::NodePtr& shader() const { return _shader; }
    const MaterialX::NodePtr& material() const { return _material; }

    /// The material's node graph, which is made when it is first asked for.
    const MaterialX::NodeGraphPtr& graph();

    /// Adds the node of a texture to the material's node graph.
    /// @param property names the node.
    /// @param type MaterialX's name of the value type.
    /// @return the graph's output.
    MaterialX::OutputPtr addTexture(const textures::Texture& texture, const std::string& property,
                                    const std::string& type);

  private:
    std::string _graphName;
    MaterialX::NodePtr _shader;
    MaterialX::NodePtr _material;
    MaterialX::NodeGraphPtr _graph;
};

/// Adds the network that tints a texture's colour to a node graph.
///
/// For each channel with source s and tint t the overlay blend is o = 1 - 2 (1 - s)(1 - t) where s
/// is at least 0.5, else 2 s t, and the result is (s + o) / 2 x (1 + t) / 2: the grain is deepened
/// by the overlay and the whole takes on the stain's colour.
/// @param source color3 input of the graph: the texture.
/// @param tint color3 input of the graph.
/// @return the new graph output, named and typed as asked for.
MaterialX::OutputPtr addTintNetwork(const MaterialX::NodeGraphPtr& graph,
                                    const MaterialX::InputPtr& source,
                                    const MaterialX::InputPtr& tint, const std::string& outputName,
                                    const std::string& type);

/// Adds a node graph of its own that tints the output of a material's node graph. The tint stays as the
/// asset states it; its colour space is stated where it is read.
/// @return the output with the tinted colour.
MaterialX::OutputPtr addTintGraph(const MaterialX::DocumentPtr& document,
                                  const MaterialX::OutputPtr& texture,
                                  const assets::DeclaredColor& tint);

} // namespace vyr::MaterialTranslation::materials
