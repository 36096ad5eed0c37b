#include "graph/Names.h"

#include <algorithm>

#include "base/Text.h"

namespace vyr::MaterialTranslation::graph
{

namespace mx = MaterialX;

std::string shaderName(const std::string& material)
{
    return material + "_shader";
}

std::string nodeGraphName(const std::string& material)
{
    return material + "_nodegraph";
}

std::string inputGraphName(const std::string& material)
{
    return material + "_inputGraph";
}

bool isIdentifier(std::string_view name)
{
    return !name.empty() && !base::isAsciiDigit(name.front()) &&
           std::ranges::all_of(name,
                               [](char c) { return c == '_' || base::isAsciiAlphanumeric(c); });
}

std::string takenName(const mx::DocumentPtr& document, const std::vector<std::string>& names,
                      bool addLook)
{
    for (const std::string& name : names)
        if (document->getChild(name) || (addLook && name == defaultLookName))
            return name;
    const bool lookIsTaken =
        addLook && document->getChild(defaultLookName) && !document->getLook(defaultLookName);
    return lookIsTaken ? defaultLookName : std::string();
}

std::string freeName(const std::string& name,
                     const std::function<bool(const std::string&)>& isTaken)
{
    std::string candidate = name;
    for (int number = 2; isTaken(candidate); ++number)
        candidate = name + std::to_string(number);
    return candidate;
}

std::string freeName(const mx::ConstElementPtr& parent, const std::string& name)
{
    return freeName(name, [&](const std::string& candidate)
                    { return parent->getChild(candidate) != nullptr; });
}

} // namespace vyr::MaterialTranslation::graph
