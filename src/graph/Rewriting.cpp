#include "graph/Rewriting.h"

#include "graph/Names.h"

namespace vyr::MaterialTranslation::graph
{

namespace mx = MaterialX;

mx::ElementPtr addCopy(const mx::ElementPtr& parent, const mx::ElementPtr& element)
{
    mx::ElementPtr copy = parent->addChildOfCategory(element->getCategory(), element->getName());
    copy->copyContentFrom(element);
    return copy;
}

mx::OutputPtr addMark(const mx::GraphElementPtr& graph, const mx::NodePtr& node)
{
    mx::OutputPtr mark =
        graph->addOutput(freeName(graph, node->getName() + "_mark"), node->getType());
    mark->setConnectedNode(node);
    return mark;
}

} // namespace vyr::MaterialTranslation::graph
