#include "definitions/RuleMessages.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>

namespace vyr::MaterialTranslation::definitions
{

namespace mx = MaterialX;

namespace
{

std::string quoted(const std::string& text)
{
    return '"' + text + '"';
}

std::string joined(const std::vector<std::string>& texts)
{
    std::string all;
    for (const std::string& text : texts)
        all += (all.empty() ? "" : ", ") + text;
    return all;
}

using Description = std::optional<std::string>;

Description undefinedType(const mx::Element& element)
{
    std::vector<std::string> types;
    for (const mx::NodeDefPtr& definition :
         element.getDocument()->getMatchingNodeDefs(element.getCategory()))
        if (std::ranges::find(types, definition->getType()) == types.end())
            types.push_back(definition->getType());
    return "no definition of " + quoted(element.getCategory()) + " is of type " +
           quoted(element.asA<mx::TypedElement>()->getType()) + "; there are " + joined(types);
}

Description unboundInput(const mx::Element&)
{
    return "the input has neither a value nor a connection";
}

Description wrongValue(const mx::Element& element)
{
    const auto value = element.asA<mx::ValueElement>();
    return quoted(value->getValueString()) + " is no value of type " + quoted(value->getType());
}

Description unknownUnitType(const mx::Element& element)
{
    return "unknown unit type " + quoted(element.asA<mx::ValueElement>()->getUnitType());
}

/// Nothing when the unit type is unknown, which has a message of its own.
Description unknownUnit(const mx::Element& element)
{
    const auto value = element.asA<mx::ValueElement>();
    const std::string& type = value->getUnitType();
    if (type.empty())
        return "the unit " + quoted(value->getUnit()) + " has no unit type";
    const mx::UnitTypeDefPtr definition = element.getDocument()->getUnitTypeDef(type);
    if (!definition)
        return std::nullopt;
    std::vector<std::string> names;
    for (const mx::UnitDefPtr& units : definition->getUnitDefs())
        for (const mx::UnitPtr& unit : units->getUnits())
            names.push_back(unit->getName());
    return "no unit " + quoted(value->getUnit()) + " of type " + quoted(type) + "; there are " +
           joined(names);
}

/// Rules that say more to a reader when they are told in terms of the element.
struct Retold
{
    std::string_view rule;
    ValidationCode code;
    Description (*describe)(const mx::Element&);
};

constexpr Retold retold[] = {
    {"Node interface doesn't support this output type", ValidationCode::NodeUndefined,
     undefinedType},
    {"Node input binds no value or connection", ValidationCode::InputUnbound, unboundInput},
    {"Unit type definition does not exist in document", ValidationCode::UnitTypeUnknown,
     unknownUnitType},
    {"Unit definition does not exist in document", ValidationCode::UnitUnknown, unknownUnit},
    {"Invalid value", ValidationCode::ValueInvalid, wrongValue},
};

void add(const mx::ElementPtr& element, const std::string& rule,
         std::vector<ValidationMessage>& messages)
{
    const auto* known =
        std::ranges::find_if(retold, [&](const Retold& r) { return r.rule == rule; });
    const std::string path = element->getNamePath();
    if (known == std::end(retold))
        messages.push_back({path, ValidationCode::Rule, rule});
    else if (const Description text = known->describe(*element))
        messages.push_back({path, known->code, *text});
}

} // namespace

void addRuleMessages(const mx::ElementPtr& element, std::vector<ValidationMessage>& messages)
{
    std::string report;
    if (element->validate(&report))
        return;
    // A line is "<rule>: <element>"; elements contain line ends when their attributes do.
    const std::string end = ": " + element->asString() + "\n";
    for (std::size_t at = report.find(end); at != std::string::npos; at = report.find(end, at + 1))
    {
        const std::size_t before = at == 0 ? std::string::npos : report.rfind('\n', at - 1);
        const std::size_t begin = before == std::string::npos ? 0 : before + 1;
        add(element, report.substr(begin, at - begin), messages);
    }
}

} // namespace vyr::MaterialTranslation::definitions
