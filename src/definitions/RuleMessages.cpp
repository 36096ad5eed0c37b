#include "definitions/Checks.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include <fmt/ranges.h>

namespace vyr::MaterialTranslation::definitions
{

namespace mx = MaterialX;

namespace
{

std::string undefinedType(const mx::Element& element)
{
    std::vector<std::string> types;
    for (const mx::NodeDefPtr& definition :
         element.getDocument()->getMatchingNodeDefs(element.getCategory()))
        if (std::ranges::find(types, definition->getType()) == types.end())
            types.push_back(definition->getType());
    return fmt::format("no definition of \"{}\" is of type \"{}\"; there are {}",
                       element.getCategory(), element.asA<mx::TypedElement>()->getType(),
                       fmt::join(types, ", "));
}

std::string unboundInput(const mx::Element&)
{
    return "the input has neither a value nor a connection";
}

std::string wrongValue(const mx::Element& element)
{
    const auto value = element.asA<mx::ValueElement>();
    return fmt::format("\"{}\" is no value of type \"{}\"", value->getValueString(),
                       value->getType());
}

std::string unknownUnitType(const mx::Element& element)
{
    return "unknown unit type \"" + element.asA<mx::ValueElement>()->getUnitType() + '"';
}

/// Empty when the unit type is unknown, which has a message of its own.
std::string unknownUnit(const mx::Element& element)
{
    const auto value = element.asA<mx::ValueElement>();
    const std::string& type = value->getUnitType();
    if (type.empty())
        return "the unit \"" + value->getUnit() + "\" has no unit type";
    const mx::UnitTypeDefPtr definition = element.getDocument()->getUnitTypeDef(type);
    if (!definition)
        return {};
    std::vector<std::string> names;
    for (const mx::UnitDefPtr& units : definition->getUnitDefs())
        for (const mx::UnitPtr& unit : units->getUnits())
            names.push_back(unit->getName());
    return fmt::format("no unit \"{}\" of type \"{}\"; there are {}", value->getUnit(), type,
                       fmt::join(names, ", "));
}

/// checkStructure tells of each loop once; MaterialX of each output that depends on one.
std::string alreadyTold(const mx::Element&)
{
    return {};
}

/// A rule that says more to a reader in terms of the element.
struct RuleWording
{
    std::string_view rule;
    ValidationCode code;
    /// Empty for nothing to say.
    std::string (*describe)(const mx::Element&);
};

constexpr RuleWording wordings[] = {
    {"Node interface doesn't support this output type", ValidationCode::NodeUndefined,
     undefinedType},
    {"Node input binds no value or connection", ValidationCode::InputUnbound, unboundInput},
    {"Unit type definition does not exist in document", ValidationCode::UnitTypeUnknown,
     unknownUnitType},
    {"Unit definition does not exist in document", ValidationCode::UnitUnknown, unknownUnit},
    {"Invalid value", ValidationCode::ValueInvalid, wrongValue},
    {"Cycle in upstream path", ValidationCode::ConnectionLoop, alreadyTold},
};

void reportRule(const mx::Element& element, const std::string& rule, Checks& checks)
{
    const auto* known = std::ranges::find(wordings, rule, &RuleWording::rule);
    if (known == std::end(wordings))
        checks.report(element, ValidationCode::Rule, rule);
    else if (std::string text = known->describe(element); !text.empty())
        checks.report(element, known->code, std::move(text));
}

} // namespace

void checkRules(const mx::ElementPtr& element, Checks& checks)
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
        reportRule(*element, report.substr(begin, at - begin), checks);
    }
}

} // namespace vyr::MaterialTranslation::definitions
