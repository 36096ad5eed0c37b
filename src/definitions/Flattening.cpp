#include "definitions/Flattening.h"

#include <algorithm>
#include <set>
#include <unordered_map>

#include "graph/Nodes.h"

namespace vyr::MaterialTranslation::definitions
{

namespace mx = MaterialX;

namespace
{

/// How MaterialX calls the nodes that read the geometry, one for each property.
constexpr const char* geometryPrefix = "geomNode_";

bool isKvor(const mx::NodePtr& node)
{
    return mx::stringStartsWith(node->getCategory(), kvorPrefix);
}

/// How many nodes come in the place of one, all the way down.
class Expansion
{
  public:
    /// More than any definition needs; what implements itself has no end at all.
    static constexpr std::size_t most = 100000;

    /// @param depth of the definitions around it.
    /// @return at most `most` + 1.
    std::size_t of(const mx::NodePtr& node, int depth = 0)
    {
        constexpr int mostDeep = 100;
        const mx::NodeDefPtr definition = node->getNodeDef();
        const auto graph =
            definition ? std::dynamic_pointer_cast<mx::NodeGraph>(definition->getImplementation())
                       : nullptr;
        if (!graph)
            return 1;
        const auto [known, isNew] = _sizes.try_emplace(graph.get(), most + 1);
        if (!isNew || depth > mostDeep)
            return known->second;
        std::size_t size = 1;
        for (const mx::NodePtr& inner : graph->getNodes())
            size += isKvor(inner) ? of(inner, depth + 1) : 1;
        return _sizes[graph.get()] = std::min(size, most + 1);
    }

  private:
    std::unordered_map<const mx::Element*, std::size_t> _sizes;
};

/// Whether an input may differ from what it is by default.
bool isAltered(const mx::NodePtr& node, const char* name, const std::string& unaltered)
{
    const mx::InputPtr input = node->getInput(name);
    if (!input)
        return false;
    const mx::ValuePtr value = input->getValue();
    const mx::ValuePtr same = mx::Value::createValueFromStrings(unaltered, input->getType());
    return !value || !same || value->getValueString() != same->getValueString();
}

/// MaterialX transforms the colours that a node with a colour-managed file gives: the result of a
/// kvor:bitmap but, once that is flattened, the stored colours, before amount and inversion. Where these do
/// something, the transform becomes a node of its own behind them.
void transformBehind(const mx::GraphElementPtr& graph, const mx::NodePtr& bitmap,
                     const mx::InputPtr& file, const Definitions& definitions)
{
    const std::string space = file->getActiveColorSpace();
    const std::string category = space + toLinearSuffix;
    if (definitions.categories.count(category) == 0 ||
        !(isAltered(bitmap, "invert", "false") || isAltered(bitmap, "rgbamount", "1")))
        return;
    const std::vector<mx::PortElementPtr> readers = bitmap->getDownstreamPorts();
    const mx::NodePtr transform = graph->addNode(
        category, graph::freeName(graph, bitmap->getName() + "_linear"), bitmap->getType());
    graph->setChildIndex(transform->getName(), graph->getChildIndex(bitmap->getName()) + 1);
    for (const mx::PortElementPtr& reader : readers)
        reader->setNodeName(transform->getName());
    transform->addInput("in", bitmap->getType())->setNodeName(bitmap->getName());
    file->setColorSpace("none");
}

/// Sees to it that the flattened image gives the colours or numbers that the node gave.
void prepareImage(const mx::GraphElementPtr& graph, const mx::NodePtr& node,
                  const Definitions& definitions)
{
    const mx::InputPtr file = node->getInput("file");
    if (!file)
        return;
    if (node->isColorType())
        transformBehind(graph, node, file, definitions);
    else
        // MaterialX transforms no numbers; readers that do not know that would.
        file->removeAttribute(mx::Element::COLOR_SPACE_ATTRIBUTE);
}

/// Replaces one node. The last of the nodes that come in its place gets its name.
void flattenNode(const mx::GraphElementPtr& graph, const mx::NodePtr& node,
                 const std::set<std::string>& others)
{
    const std::string name = node->getName();
    // It follows the node to what replaces it.
    const mx::OutputPtr mark =
        graph->addOutput(graph::freeName(graph, name + "_mark"), node->getType());
    mark->setConnectedNode(node);
    graph->flattenSubgraphs(
        mx::EMPTY_STRING, [&](const mx::NodePtr& candidate)
        { return isKvor(candidate) && others.count(candidate->getName()) == 0; });
    const mx::NodePtr last = mark->getConnectedNode();
    graph->removeOutput(mark->getName());
    last->setNameGlobal(name);
}

/// MaterialX adds the nodes that read the geometry in an order that varies from run to run.
void sortGeometryNodes(const mx::GraphElementPtr& graph)
{
    std::set<std::string> names;
    for (const mx::NodePtr& node : graph->getNodes())
        if (mx::stringStartsWith(node->getName(), geometryPrefix))
            names.insert(node->getName());
    for (const std::string& name : names)
        graph->setChildIndex(name, static_cast<int>(graph->getChildren().size()) - 1);
}

void flattenGraph(const mx::GraphElementPtr& graph, const Definitions& definitions,
                  std::vector<ValidationMessage>& messages)
{
    std::vector<mx::NodePtr> nodes;
    std::set<std::string> names;
    Expansion expansion;
    for (const mx::NodePtr& node : graph->getNodes())
    {
        if (!isKvor(node))
            continue;
        // Under such a name MaterialX would take the node for one that reads the geometry.
        if (mx::stringStartsWith(node->getName(), geometryPrefix))
            node->setNameGlobal(graph::freeName(graph, "kvor_" + node->getName()));
        names.insert(node->getName());
        const bool isDefined = node->getNodeDef() != nullptr;
        if (isDefined && expansion.of(node) <= Expansion::most)
            nodes.push_back(node);
        else
            messages.push_back({node->getNamePath(), ValidationCode::NodeUndefined,
                                isDefined
                                    ? "its definition has no end, or too many nodes"
                                    : "no definition of \"" + node->getCategory() + "\" fits"});
    }
    for (const mx::NodePtr& node : nodes)
    {
        names.erase(node->getName());
        prepareImage(graph, node, definitions);
        flattenNode(graph, node, names);
    }
    if (!nodes.empty())
        sortGeometryNodes(graph);
}

/// Gives the nodes at the top level that are not among `before` names that no node of a graph has: the
/// shader generation of MaterialX up to 1.39.4 takes the two for one.
void keepApart(const mx::DocumentPtr& document, const std::vector<mx::NodeGraphPtr>& graphs,
               const std::set<std::string>& before)
{
    const auto inGraph = [&](const std::string& name)
    {
        return std::ranges::any_of(graphs, [&](const mx::NodeGraphPtr& graph)
                                   { return graph->getChild(name) != nullptr; });
    };
    for (const mx::NodePtr& node : document->getNodes())
    {
        const std::string name = node->getName();
        if (before.count(name) != 0 || mx::stringStartsWith(name, geometryPrefix) || !inGraph(name))
            continue;
        node->setNameGlobal(
            graph::freeName(name, [&](const std::string& candidate)
                            { return document->getChild(candidate) || inGraph(candidate); }));
    }
}

} // namespace

void flattenNodes(const mx::DocumentPtr& document, const Definitions& definitions,
                  std::vector<ValidationMessage>& messages)
{
    // Not getNodeGraphs(), which gives those of the shared data library too.
    std::vector<mx::NodeGraphPtr> graphs;
    std::set<std::string> before;
    for (const mx::ElementPtr& child : document->getChildren())
    {
        before.insert(child->getName());
        if (const auto graph = child->asA<mx::NodeGraph>())
            graphs.push_back(graph);
    }
    for (const mx::NodeGraphPtr& graph : graphs)
        flattenGraph(graph, definitions, messages);
    flattenGraph(document, definitions, messages);
    keepApart(document, graphs, before);
}

} // namespace vyr::MaterialTranslation::definitions
