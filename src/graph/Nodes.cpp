#include "graph/Nodes.h"

#include "graph/Names.h"

namespace vyr::MaterialTranslation::graph
{

namespace mx = MaterialX;

mx::NodePtr addNode(const mx::GraphElementPtr& graph, const std::string& category,
                    const std::string& name, const std::string& type)
{
    return graph->addNode(category, name, type);
}

std::string outputName(const std::string& node)
{
    return node + "_output";
}

mx::OutputPtr addNodeOutput(const mx::NodeGraphPtr& graph, const mx::NodePtr& node)
{
    return addOutput(graph, outputName(node->getName()), node, node->getType());
}

mx::OutputPtr addOutput(const mx::NodeGraphPtr& graph, const std::string& name,
                        const mx::NodePtr& node, const std::string& type)
{
    mx::OutputPtr output = graph->addOutput(name, type);
    output->setConnectedNode(node);
    return output;
}

mx::NodeGraphPtr addNodeGraph(const mx::DocumentPtr& document, const std::string& name)
{
    return document->addNodeGraph(name);
}

mx::NodePtr addSurfaceMaterial(const mx::DocumentPtr& document, const std::string& name,
                               const mx::NodePtr& shader)
{
    return document->addMaterialNode(name, shader);
}

void assignInDefaultLook(const mx::DocumentPtr& document, const std::string& material)
{
    mx::LookPtr look = document->getLook(defaultLookName);
    const bool first = !look;
    if (first)
        look = document->addLook(defaultLookName);
    constexpr const char* everything = "*";
    const std::string name = first ? "material_assign_default" : "material_assign_" + material;
    const mx::MaterialAssignPtr assignment =
        look->addMaterialAssign(freeName(look, name), material);
    assignment->setGeom(everything);
}

} // namespace vyr::MaterialTranslation::graph
