#include "graph/Nodes.h"

#include <algorithm>

#include "assets/ColorSpaces.h"
#include "base/Text.h"

namespace vyr::MaterialTranslation::graph
{

namespace mx = MaterialX;

namespace
{

const std::string& typeOf(const mx::TypedElementPtr& source)
{
    return source ? source->getType() : typeStringOf<float>();
}

mx::Vector2 toVector(const std::array<float, 2>& pair)
{
    return {pair[0], pair[1]};
}

void addPlacementInputs(const mx::NodePtr& node, const TextureInfo& texture)
{
    const base::Unit unit{base::lengthUnitName(texture.unit), base::distanceUnitType};
    const auto addPair = [&](const char* input, const std::array<float, 2>& pair)
    { return addTypedInput(node, input, toVector(pair)); };
    setInputUnit(addPair("realworld_offset", texture.realWorldOffset), unit);
    setInputUnit(addPair("realworld_scale", texture.realWorldScale), unit);
    addPair("uv_offset", texture.uvOffset);
    addPair("uv_scale", texture.uvScale);
    addTypedInput(node, "rotation_angle", texture.rotation);
}

/// A "mix" node that still lacks its factor.
mx::NodePtr addMixOf(const mx::GraphElementPtr& graph, const std::string& name,
                     const mx::TypedElementPtr& foreground, const mx::TypedElementPtr& background)
{
    mx::NodePtr node = graph->addNode("mix", name, typeOf(foreground));
    addSourceInput(node, "fg", foreground, typeOf(foreground));
    addSourceInput(node, "bg", background, typeOf(foreground));
    return node;
}

mx::NodePtr addPlaced(const mx::GraphElementPtr& graph, const std::string& category,
                      const std::string& name, const TextureInfo& texture, const std::string& type,
                      const char* colorSpace, bool repeats)
{
    mx::NodePtr node = graph->addNode(category, name, type);
    addFileInput(node, texture.path.str(), colorSpace);
    addPlacementInputs(node, texture);
    setAddressModes(node, repeats, repeats);
    return node;
}

} // namespace

bool isIdentifier(std::string_view name)
{
    return !name.empty() && !base::isAsciiDigit(name.front()) &&
           std::ranges::all_of(name,
                               [](char c) { return c == '_' || base::isAsciiAlphanumeric(c); });
}

std::string freeName(const mx::ConstElementPtr& parent, const std::string& name)
{
    return freeName(name, [&](const std::string& candidate)
                    { return parent->getChild(candidate) != nullptr; });
}

mx::OutputPtr addOutput(const mx::NodeGraphPtr& graph, const std::string& name,
                        const mx::NodePtr& node, const std::string& type)
{
    mx::OutputPtr output = graph->addOutput(name, type);
    output->setConnectedNode(node);
    return output;
}

mx::OutputPtr addNodeOutput(const mx::NodeGraphPtr& graph, const mx::NodePtr& node)
{
    return addOutput(graph, node->getName() + "_output", node, node->getType());
}

mx::InputPtr addSourceInput(const mx::NodePtr& node, const std::string& name,
                            const mx::TypedElementPtr& source, const std::string& type)
{
    mx::InputPtr input = node->addInput(name, type);
    connectInput(input, source);
    return input;
}

mx::NodePtr addConstantFloat(const mx::GraphElementPtr& graph, const std::string& name, float value)
{
    return addConstant(graph, name, value);
}

mx::NodePtr addExtract(const mx::GraphElementPtr& graph, const std::string& name,
                       const mx::TypedElementPtr& source, int index)
{
    mx::NodePtr node = addUnary(graph, "extract", name, source, typeStringOf<float>());
    addTypedInput(node, "index", index);
    return node;
}

mx::NodePtr addSwitch(const mx::GraphElementPtr& graph, const std::string& name,
                      const mx::TypedElementPtr& first, const mx::TypedElementPtr& second,
                      int selector)
{
    mx::NodePtr node = addBinary(graph, "switch", name, first, second);
    addTypedInput(node, "which", selector);
    return node;
}

mx::NodePtr addBinary(const mx::GraphElementPtr& graph, const std::string& category,
                      const std::string& name, const mx::TypedElementPtr& first,
                      const mx::TypedElementPtr& second)
{
    mx::NodePtr node = graph->addNode(category, name, typeOf(first));
    addSourceInput(node, "in1", first, typeOf(first));
    addSourceInput(node, "in2", second, typeOf(first));
    return node;
}

mx::NodePtr addMix(const mx::GraphElementPtr& graph, const std::string& name,
                   const mx::TypedElementPtr& foreground, const mx::TypedElementPtr& background,
                   float factor)
{
    mx::NodePtr node = addMixOf(graph, name, foreground, background);
    addTypedInput(node, "mix", factor);
    return node;
}

mx::NodePtr addMix(const mx::GraphElementPtr& graph, const std::string& name,
                   const mx::TypedElementPtr& foreground, const mx::TypedElementPtr& background,
                   const mx::TypedElementPtr& factor)
{
    mx::NodePtr node = addMixOf(graph, name, foreground, background);
    addSourceInput(node, "mix", factor, typeStringOf<float>());
    return node;
}

mx::NodePtr addUnary(const mx::GraphElementPtr& graph, const std::string& category,
                     const std::string& name, const mx::TypedElementPtr& source,
                     const std::string& type)
{
    mx::NodePtr node = graph->addNode(category, name, type);
    addSourceInput(node, "in", source, typeOf(source));
    return node;
}

mx::NodePtr addPlacement(const mx::GraphElementPtr& graph, const std::string& name,
                         const TextureInfo& texture)
{
    mx::NodePtr node = graph->addNode("kvor:placement", name, typeStringOf<mx::Vector2>());
    addPlacementInputs(node, texture);
    return node;
}

mx::NodePtr addPlacedTextureNode(const mx::GraphElementPtr& graph, const std::string& name,
                                 const TextureInfo& texture, const std::string& type)
{
    return addPlaced(graph, "kvor:bitmap", name, texture, type, assets::srgbTexture, false);
}

mx::NodePtr addPlacedTextureNode(const mx::GraphElementPtr& graph, const std::string& category,
                                 const std::string& name, const TextureInfo& texture,
                                 const std::string& type, bool linear)
{
    return addPlaced(graph, category, name, texture, type,
                     linear ? assets::linearRec709 : assets::srgbTexture, true);
}

void setAddressModes(const mx::NodePtr& node, bool repeatU, bool repeatV)
{
    const auto mode = [](bool repeats) { return std::string(repeats ? "periodic" : "clamp"); };
    addTypedInput(node, "uaddressmode", mode(repeatU));
    addTypedInput(node, "vaddressmode", mode(repeatV));
}

} // namespace vyr::MaterialTranslation::graph
