#pragma once

#include <optional>
#include <string>

#include <MaterialXCore/Document.h>

#include "textures/Texture.h"

namespace vyr::MaterialTranslation::materials
{

/// The elements that every material has, whatever its shading model, and that a translator fills.
class Skeleton
{
  public:
    /// Adds shader node, material node and, when the options ask for it, the look that assigns the
    /// material to all geometry, and sets the document's colour space, linear Rec.709.
    /// @param category of the shader node, such as "standard_surface".
    /// @param graphSuffix ends the name of the node graph of the material's textures.
    /// @return nothing, with the reason in the log and nothing added, when there is no document or one of
    ///         the names is taken in it.
    static std::optional<Skeleton> build(const Translation& translation,
                                         const std::string& category, const char* graphSuffix);

    const MaterialX::NodePtr& shader() const { return _shader; }
    const MaterialX::NodePtr& material() const { return _material; }

    /// Adds the node of a texture to the material's node graph, which is made with the first one.
    /// @param property names the node.
    /// @param type MaterialX's name of the value type.
    /// @return the graph's output.
    MaterialX::OutputPtr addTexture(const textures::Texture& texture, const std::string& property,
                                    const std::string& type);

  private:
    Skeleton() = default;

    std::string _graphName;
    MaterialX::NodePtr _shader;
    MaterialX::NodePtr _material;
    MaterialX::NodeGraphPtr _graph;
};

} // namespace vyr::MaterialTranslation::materials
