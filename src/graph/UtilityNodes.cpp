#include "graph/UtilityNodes.h"

#include "graph/Inputs.h"
#include "graph/Nodes.h"

namespace vyr::MaterialTranslation::graph
{

namespace mx = MaterialX;

namespace
{

const std::string& typeOf(const mx::TypedElementPtr& source)
{
    return source ? source->getType() : typeStringOf<float>();
}

} // namespace

mx::InputPtr addSourceInput(const mx::NodePtr& node, const std::string& name,
                            const mx::TypedElementPtr& source, const std::string& type)
{
    mx::InputPtr input = addInput(node, name, type);
    connectInput(input, source);
    return input;
}

mx::NodePtr addConstantFloat(const mx::GraphElementPtr& graph, const std::string& name, float value)
{
    mx::NodePtr node = addNode(graph, "constant", name, typeStringOf<float>());
    addTypedInput(node, "value", value);
    return node;
}

mx::NodePtr addExtract(const mx::GraphElementPtr& graph, const std::string& name,
                       const mx::TypedElementPtr& source, int index)
{
    mx::NodePtr node = addNode(graph, "extract", name, typeStringOf<float>());
    addSourceInput(node, "in", source, typeOf(source));
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
    mx::NodePtr node = addNode(graph, category, name, typeOf(first));
    addSourceInput(node, "in1", first, typeOf(first));
    addSourceInput(node, "in2", second, typeOf(first));
    return node;
}

mx::NodePtr addMix(const mx::GraphElementPtr& graph, const std::string& name,
                   const mx::TypedElementPtr& foreground, const mx::TypedElementPtr& background,
                   float factor)
{
    mx::NodePtr node = addNode(graph, "mix", name, typeOf(foreground));
    addSourceInput(node, "fg", foreground, typeOf(foreground));
    addSourceInput(node, "bg", background, typeOf(foreground));
    addTypedInput(node, "mix", factor);
    return node;
}

} // namespace vyr::MaterialTranslation::graph
