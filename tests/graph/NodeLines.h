#pragma once

#include <string>
#include <vector>

#include <MaterialXCore/Document.h>

namespace vyr::graphtests
{

using Lines = std::vector<std::string>;

/// "category type", then each input as "name type" with what it reads and states; none for no node.
inline Lines linesOf(const MaterialX::NodePtr& node)
{
    if (!node)
        return {};
    Lines lines{node->getCategory() + " " + node->getType()};
    for (const MaterialX::InputPtr& input : node->getInputs())
    {
        lines.push_back(input->getName() + " " + input->getType());
        for (const char* attribute : {"nodename", "interfacename", "nodegraph", "output", "value",
                                      "colorspace", "unit", "unittype"})
            if (input->hasAttribute(attribute))
                lines.back() += std::string(" ") + attribute + "=" + input->getAttribute(attribute);
    }
    return lines;
}

} // namespace vyr::graphtests
