#include "definitions/ElementChecks.h"

#include <algorithm>
#include <utility>

#include "definitions/FileCheck.h"
#include "definitions/RuleMessages.h"
#include "definitions/WholeValues.h"

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

/// What the definition of a node says about its input; null without a definition.
mx::InputPtr declarationOf(const mx::ValueElement& input)
{
    const auto node = input.getParent()->asA<mx::Node>();
    const mx::NodeDefPtr definition = node ? node->getNodeDef() : nullptr;
    return definition ? definition->getActiveInput(input.getName()) : nullptr;
}

/// A unit of another kind than the input takes: no shader can be generated.
void checkUnitKind(const mx::ValueElement& value, CheckContext& context)
{
    const mx::InputPtr input = declarationOf(value);
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

/// Shaders cannot be generated for other texts than those that a definition lists; for other types its list only
/// makes proposals. An empty text chooses nothing.
void checkChoice(const mx::ValueElement& value, CheckContext& context)
{
    const bool isText = value.getType() == mx::STRING_TYPE_STRING;
    const std::string chosen = isText ? mx::trimSpaces(value.getValueString()) : std::string();
    const mx::InputPtr declared = chosen.empty() ? nullptr : declarationOf(value);
    if (!declared)
        return;
    const std::string& choices = declared->getAttribute(mx::ValueElement::ENUM_ATTRIBUTE);
    const mx::StringVec all = mx::splitString(choices, ",");
    if (!all.empty() && std::ranges::find(all, chosen, mx::trimSpaces) == all.end())
        report(value, ValidationCode::ChoiceUnknown,
               "\"" + chosen + "\" is none of the choices: " + choices, context);
}

void checkWhole(const mx::ValueElement& value, CheckContext& context)
{
    const std::string& text = value.getValueString();
    // What MaterialX cannot read at all it tells of itself.
    if (!text.empty() && !isWhole(text, value.getType()) && value.getValue())
        report(value, ValidationCode::ValueInvalid,
               "\"" + text + "\" as a whole is no value of type \"" + value.getType() + "\"",
               context);
}

void checkAssignment(const mx::MaterialAssign& assignment, CheckContext& context)
{
    const mx::NodePtr node = assignment.getReferencedMaterial();
    const bool isMaterial = node && (node->getType() == mx::MATERIAL_TYPE_STRING ||
                                     node->getType() == mx::MULTI_OUTPUT_TYPE_STRING);
    // A graph gives materials by its outputs.
    if (!isMaterial && assignment.getMaterialOutputs().empty())
        report(assignment, ValidationCode::MaterialMissing,
               "there is no material \"" + assignment.getMaterial() + "\"", context);
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
    checkWhole(value, context);
    checkChoice(value, context);
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
    else if (const auto* assignment = dynamic_cast<const mx::MaterialAssign*>(&element))
        checkAssignment(*assignment, context);
}

/// The values of a definition are defaults, whose units its users choose.
void checkDefinition(const mx::ElementPtr& element, CheckContext& context)
{
    if (context.breaksRules)
        addRuleMessages(element, context.messages);
    if (const auto* value = dynamic_cast<const mx::ValueElement*>(element.get()))
        checkWhole(*value, context);
    for (const mx::ElementPtr& child : element->getChildren())
        checkDefinition(child, context);
}

} // namespace

void checkElements(const mx::ElementPtr& element, CheckContext& context)
{
    if (element->getCategory() == mx::NodeDef::CATEGORY)
    {
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
