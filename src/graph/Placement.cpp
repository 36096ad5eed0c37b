#include "graph/Placement.h"

#include "assets/Units.h"
#include "graph/Inputs.h"
#include "graph/Nodes.h"

namespace vyr::MaterialTranslation::graph
{

namespace mx = MaterialX;

namespace
{

constexpr const char* periodic = "periodic";
constexpr const char* clamp = "clamp";

mx::Vector2 toVector(const std::array<float, 2>& pair)
{
    return {pair[0], pair[1]};
}

void addAddressModes(const mx::NodePtr& node, const char* u, const char* v)
{
    addTypedInput(node, "uaddressmode", std::string(u));
    addTypedInput(node, "vaddressmode", std::string(v));
}

void addLength(const mx::NodePtr& node, const char* name, const mx::Vector2& value,
               const assets::Unit& unit)
{
    setInputUnit(addTypedInput(node, name, value), unit);
}

mx::NodePtr addPlaced(const mx::GraphElementPtr& graph, const std::string& category,
                      const std::string& name, const TextureInfo& texture, const std::string& type,
                      const char* colorSpace, const char* addressMode)
{
    mx::NodePtr node = addNode(graph, category, name, type);
    const assets::Unit unit{assets::DistanceUnitName(texture.unit), assets::distanceUnitType};
    addFileInput(node, texture.path.str(), colorSpace);
    addLength(node, "realworld_offset", toVector(texture.realWorldOffset), unit);
    addLength(node, "realworld_scale", toVector(texture.realWorldScale), unit);
    addTypedInput(node, "uv_offset", toVector(texture.uvOffset));
    addTypedInput(node, "uv_scale", toVector(texture.uvScale));
    addTypedInput(node, "rotation_angle", texture.rotation);
    addAddressModes(node, addressMode, addressMode);
    return node;
}

} // namespace

mx::NodePtr addPlacedTextureNode(const mx::GraphElementPtr& graph, const std::string& name,
                                 const TextureInfo& texture, const std::string& type)
{
    return addPlaced(graph, "kvor:bitmap", name, texture, type, assets::srgbTexture, clamp);
}

mx::NodePtr addPlacedTextureNode(const mx::GraphElementPtr& graph, const std::string& category,
                                 const std::string& name, const TextureInfo& texture,
                                 const std::string& type, bool linear)
{
    return addPlaced(graph, category, name, texture, type,
                     linear ? assets::linearRec709 : assets::srgbTexture, periodic);
}

void setAddressModes(const mx::NodePtr& node, bool repeatU, bool repeatV)
{
    addAddressModes(node, repeatU ? periodic : clamp, repeatV ? periodic : clamp);
}

} // namespace vyr::MaterialTranslation::graph
