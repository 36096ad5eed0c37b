#include "definitions/Embedding.h"

#include <set>

#include "graph/Rewriting.h"

namespace vyr::MaterialTranslation::definitions
{

namespace mx = MaterialX;

namespace
{

using Names = std::set<std::string>;

/// Adds the names of the kvor definitions and graphs that the nodes at or below an element need.
void collect(const mx::ElementPtr& root, Names& needed)
{
    for (const mx::ElementPtr& element : root->traverseTree())
    {
        const auto node = element->asA<mx::Node>();
        const mx::NodeDefPtr definition = node ? node->getNodeDef() : nullptr;
        if (!definition || definition->getNamespace() != kvorNamespace ||
            !needed.insert(definition->getName()).second)
            continue;
        if (const mx::InterfaceElementPtr graph = definition->getImplementation())
        {
            needed.insert(graph->getName());
            collect(graph, needed);
        }
    }
}

} // namespace

void embedDefinitions(const mx::DocumentPtr& document, const Definitions& definitions)
{
    Names needed;
    collect(document, needed);
    for (const mx::ElementPtr& child : definitions.kvor->getChildren())
        if (needed.count(child->getName()) != 0)
            graph::addCopy(document, child);
}

void removeEmbedded(const mx::DocumentPtr& document)
{
    const std::vector<mx::ElementPtr> children = document->getChildren();
    for (const mx::ElementPtr& child : children)
    {
        const bool defines = child->isA<mx::NodeDef>() || child->isA<mx::NodeGraph>();
        if (defines && child->getNamespace() == kvorNamespace)
            document->removeChild(child->getName());
    }
}

} // namespace vyr::MaterialTranslation::definitions
