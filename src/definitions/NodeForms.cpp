#include <MaterialTranslation/NodeForms.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <set>
#include <string_view>
#include <utility>

#include <MaterialXCore/Unit.h>

#include "base/Units.h"
#include "definitions/Checks.h"
#include "definitions/DataLibrary.h"
#include "definitions/Flattening.h"
#include "graph/Values.h"

namespace vyr::MaterialTranslation
{

namespace mx = MaterialX;

namespace
{

using definitions::Definitions;

/// Adds the names of the kvor definitions and graphs that the nodes at or below an element need.
void collectNeeded(const mx::ElementPtr& root, std::set<std::string>& needed)
{
    for (const mx::ElementPtr& element : root->traverseTree())
    {
        const auto node = element->asA<mx::Node>();
        const mx::NodeDefPtr definition = node ? node->getNodeDef() : nullptr;
        if (!definition || definition->getNamespace() != definitions::kvorNamespace ||
            !needed.insert(definition->getName()).second)
            continue;
        if (const mx::InterfaceElementPtr graph = definition->getImplementation())
        {
            needed.insert(graph->getName());
            collectNeeded(graph, needed);
        }
    }
}

/// Copies the definitions and graphs of the kvor nodes that a document uses into it, with those that they
/// use in turn, behind everything else and in the library's order.
void embedDefinitions(const mx::DocumentPtr& document, const Definitions& definitions,
                      std::vector<ValidationMessage>& messages)
{
    std::set<std::string> needed;
    collectNeeded(document, needed);
    for (const mx::ElementPtr& child : definitions.kvor->getChildren())
    {
        const std::string& name = child->getName();
        if (needed.count(name) == 0)
            continue;
        // The document finds those of its data library too.
        const mx::ElementPtr own = document->getChild(name);
        if (own && own->getParent() == document)
            messages.push_back({name, ValidationCode::NameTwice,
                                "the document has an element of a definition's name"});
        else
            document->addChildOfCategory(child->getCategory(), name)->copyContentFrom(child);
    }
}

void removeEmbedded(const mx::DocumentPtr& document)
{
    const std::vector<mx::ElementPtr> children = document->getChildren();
    for (const mx::ElementPtr& child : children)
    {
        const bool defines = child->isA<mx::NodeDef>() || child->isA<mx::NodeGraph>();
        if (defines && child->getNamespace() == definitions::kvorNamespace)
            document->removeChild(child->getName());
    }
}

/// The unit that the values of a unit type are converted to.
struct TargetUnit
{
    std::string_view type;
    const char* unit;
    /// Whether MaterialX's standard library has it; if not, values have no unit afterwards.
    bool standard;
};

constexpr TargetUnit targetUnits[] = {
    {base::distanceUnitType, "meter", true},
    {base::angleUnitType, "degree", true},
    {base::luminanceUnitType, "candelapersquaremeter", false},
};

/// Whether a conversion has neither left the range of numbers nor made one vanish.
bool survives(float value, float converted)
{
    return std::isfinite(converted) && (converted == 0.0f) == (value == 0.0f);
}

template <class Vector> bool survives(const Vector& value, const Vector& converted)
{
    return std::equal(value.begin(), value.end(), converted.begin(),
                      [](float v, float c) { return survives(v, c); });
}

enum class Conversion
{
    OtherType,
    OutOfRange,
    Done,
};

template <class Value>
Conversion convertAs(mx::ValueElement& element, const mx::Value& value,
                     const mx::UnitConverter& converter, const std::string& unit)
{
    if (!value.isA<Value>())
        return Conversion::OtherType;
    const auto& former = value.asA<Value>();
    const Value converted = converter.convert(former, element.getUnit(), unit);
    if (!survives(former, converted))
        return Conversion::OutOfRange;
    element.setValueString(graph::valueString(converted));
    return Conversion::Done;
}

/// @return whether the value may get the unit; otherwise it is as it was.
bool convertValue(mx::ValueElement& element, const mx::UnitConverter& converter,
                  const std::string& unit)
{
    const mx::ValuePtr value = element.getValue();
    if (!value || element.getUnit() == unit)
        return true;
    for (const auto convert :
         {convertAs<float>, convertAs<mx::Vector2>, convertAs<mx::Vector3>, convertAs<mx::Vector4>})
        if (const Conversion result = convert(element, *value, converter, unit);
            result != Conversion::OtherType)
            return result == Conversion::Done;
    return true;
}

bool haveUnit(const std::vector<mx::UnitDefPtr>& definitions, const std::string& unit)
{
    return std::ranges::any_of(definitions, [&](const mx::UnitDefPtr& definition)
                               { return definition->getUnit(unit) != nullptr; });
}

void convertUnit(mx::ValueElement& element, const char* target,
                 std::vector<ValidationMessage>& messages)
{
    const std::string& type = element.getUnitType();
    const std::string& unit = element.getUnit();
    const mx::UnitTypeDefPtr known = element.getDocument()->getUnitTypeDef(type);
    if (!known || !haveUnit(known->getUnitDefs(), unit))
        messages.push_back({element.getNamePath(), ValidationCode::UnitUnknown,
                            "no unit \"" + unit + "\" of type \"" + type + "\""});
    else if (convertValue(element, *mx::LinearUnitConverter::create(known), target))
        element.setUnit(target);
    else
        messages.push_back(
            {element.getNamePath(), ValidationCode::ValueRange,
             element.getValueString() + " " + unit + " is beyond a 32-bit float in " + target});
}

/// Converts a value to the unit of its type, in the form Embed only from a unit that MaterialX's standard
/// library lacks. Units that are not known stay and are reported, and so do values that no number could
/// hold afterwards.
void useStandardUnit(mx::ValueElement& element, NodeForm form, const Definitions& definitions,
                     std::vector<ValidationMessage>& messages)
{
    const auto* target = std::ranges::find(targetUnits, element.getUnitType(), &TargetUnit::type);
    if (target == std::end(targetUnits))
        return;
    if (element.hasUnit() && (form == NodeForm::Standard ||
                              haveUnit(definitions.kvor->getUnitDefs(), element.getUnit())))
        convertUnit(element, target->unit, messages);
    if (!target->standard && (!element.hasUnit() || element.getUnit() == target->unit))
    {
        element.removeAttribute(mx::ValueElement::UNIT_ATTRIBUTE);
        element.removeAttribute(mx::ValueElement::UNITTYPE_ATTRIBUTE);
    }
}

} // namespace

std::vector<ValidationMessage> applyNodeForm(const mx::DocumentPtr& document, NodeForm form)
{
    const auto definitions = definitions::definitionsOf(DefinitionSet::All);
    const definitions::DataLibraryScope scope(document, definitions->library);
    std::vector<ValidationMessage> messages;
    definitions::Checks checks{*definitions, {}, messages};
    if (!definitions::checkInheritance(document, checks))
        return definitions::onOneLine(std::move(messages));
    removeEmbedded(document);
    if (form == NodeForm::Embed)
        embedDefinitions(document, *definitions, messages);
    if (form == NodeForm::Standard)
        flattenNodes(document, *definitions, messages);
    if (form != NodeForm::Reference)
        for (const mx::ElementPtr& element : document->traverseTree())
            if (const auto value = element->asA<mx::ValueElement>())
                useStandardUnit(*value, form, *definitions, messages);
    return definitions::onOneLine(std::move(messages));
}

} // namespace vyr::MaterialTranslation
