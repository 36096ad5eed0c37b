#include "definitions/ElementChecks.h"

#include <utility>

#include "definitions/FileCheck.h"
#include "definitions/RuleMessages.h"

namespace vyr::MaterialTranslation::definitions
{

namespace mx = MaterialX;

namespace
{

void report(const mx::Element& element, ValidationCode code, std::string text,
            CheckContext& context)
{
    context.messages.push_back({element.getNamePath(), code, std::move(text)});
}

void checkColorSpace(const mx::Element& element, CheckContext& context)
{
    const std::string& name = element.getColorSpace();
    if (name.empty() || context.definitions.knowsColorSpace(name))
        return;
    std::string text = "unknown colour space \"" + name + "\"; known are";
    const char* separator = " ";
    for (const std::string& known : context.definitions.colorSpaces)
        text += std::exchange(separator, ", ") + known;
    report(element, ValidationCode::ColorSpaceUnknown, std::move(text), context);
}

/// MaterialX itself finds a known category without the node's type.
void checkNode(const mx::Node& node, CheckContext& context)
{
    const std::string& category = node.getCategory();
    if (context.definitions.categories.count(category) != 0 || node.getNodeDef())
        return;
    report(node, ValidationCode::NodeUndefined, "no definition of \"" + category + "\"", context);
}

/// A unit of another kind than the input takes: no shader can be generated.
void checkUnitKind(const mx::ValueElement& value, CheckContext& context)
{
    const auto node = value.getParent()->asA<mx::Node>();
    const mx::NodeDefPtr definition = node ? node->getNodeDef() : nullptr;
    const mx::InputPtr input = definition ? definition->getActiveInput(value.getName()) : nullptr;
    if (input && input->hasUnitType() && input->getUnitType() != value.getUnitType())
        report(value, ValidationCode::UnitMisfit,
               "the unit is of the kind \"" + value.getUnitType() + "\", but the input takes a \"" +
                   input->getUnitType() + "\"",
               context);
}

void checkUnit(const mx::ValueElement& value, CheckContext& context)
{
    if (value.hasUnitType())
        checkUnitKind(value, context);
    if (!value.hasUnitType() || value.hasUnit() || !value.hasValueString())
        return;
    report(value, ValidationCode::UnitMissing,
           "the value has the unit type \"" + value.getUnitType() +
               "\" but no unit, so nobody can tell how much it is; add the unit, or take the unit "
               "type away",
           context);
}

void checkGraph(const mx::NodeGraph& graph, CheckContext& context)
{
    const bool hasNodes = !graph.getNodes().empty();
    if (!hasNodes && graph.getOutputCount() == 0)
        report(graph, ValidationCode::GraphEmpty, "the node graph is empty", context);
    else if (graph.getOutputCount() == 0)
        report(graph, ValidationCode::GraphEmpty, "the node graph has no output", context);
    else if (!hasNodes)
        report(graph, ValidationCode::GraphEmpty, "the node graph has no nodes", context);
}

void checkValue(const mx::ValueElement& value, CheckContext& context)
{
    checkUnit(value, context);
    if (value.getType() == mx::FILENAME_TYPE_STRING && !value.getValueString().empty())
        checkFile(value, context.searchPath, context.messages);
}

/// The checks that MaterialX does not make.
void check(const mx::Element& element, CheckContext& context)
{
    checkColorSpace(element, context);
    if (const auto* node = dynamic_cast<const mx::Node*>(&element))
        checkNode(*node, context);
    else if (const auto* value = dynamic_cast<const mx::ValueElement*>(&element))
        checkValue(*value, context);
    else if (const auto* graph = dynamic_cast<const mx::NodeGraph*>(&element))
        checkGraph(*graph, context);
}

/// The values of a definition are defaults, whose units its users choose: only MaterialX's rules hold.
void checkDefinition(const mx::ElementPtr& element, CheckContext& context)
{
    addRuleMessages(element, context.messages);
    for (const mx::ElementPtr& child : element->getChildren())
        checkDefinition(child, context);
}

} // namespace

void checkElements(const mx::ElementPtr& element, CheckContext& context)
{
    if (element->getCategory() == mx::NodeDef::CATEGORY)
    {
        if (context.breaksRules)
            checkDefinition(element, context);
        return;
    }
    if (context.breaksRules)
        addRuleMessages(element, context.messages);
    check(*element, context);
    for (const mx::ElementPtr& child : element->getChildren())
        checkElements(child, context);
}

} // namespace vyr::MaterialTranslation::definitions
