#include "definitions/StandardUnits.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string_view>

#include <MaterialXCore/Unit.h>

#include "graph/ValueStrings.h"

namespace vyr::MaterialTranslation::definitions
{

namespace mx = MaterialX;

namespace
{

struct TargetUnit
{
    std::string_view type;
    const char* unit;
    /// Whether MaterialX's standard library has the unit type.
    bool standard;
};

constexpr TargetUnit targetUnits[] = {
    {"distance", "meter", true},
    {"angle", "degree", true},
    {"luminance", "candelapersquaremeter", false},
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

bool hasUnit(const mx::Document& document, const std::string& type, const std::string& unit)
{
    const mx::UnitTypeDefPtr definition = document.getUnitTypeDef(type);
    if (!definition)
        return false;
    const std::vector<mx::UnitDefPtr> all = definition->getUnitDefs();
    return std::ranges::any_of(all, [&](const mx::UnitDefPtr& units)
                               { return units->getUnit(unit) != nullptr; });
}

/// Whether only the kvor definitions have the unit.
bool isLacking(const Definitions& definitions, const std::string& unit)
{
    const auto all = definitions.kvor->getUnitDefs();
    return std::ranges::any_of(all, [&](const mx::UnitDefPtr& units)
                               { return units->getUnit(unit) != nullptr; });
}

void standardize(mx::ValueElement& element, const TargetUnit& target,
                 std::vector<ValidationMessage>& messages)
{
    const std::string type = element.getUnitType();
    const mx::ConstDocumentPtr document = element.getDocument();
    if (!hasUnit(*document, type, element.getUnit()))
    {
        messages.push_back({element.getNamePath(), ValidationCode::UnitUnknown,
                            "no unit \"" + element.getUnit() + "\" of type \"" + type + "\""});
        return;
    }
    const auto converter = mx::LinearUnitConverter::create(document->getUnitTypeDef(type));
    if (convertValue(element, *converter, target.unit))
        element.setUnit(target.unit);
    else
        messages.push_back({element.getNamePath(), ValidationCode::ValueRange,
                            element.getValueString() + " " + element.getUnit() +
                                " is beyond a 32-bit float in " + target.unit});
}

void useStandardUnit(mx::ValueElement& element, UnitScope scope, const Definitions& definitions,
                     std::vector<ValidationMessage>& messages)
{
    const auto* target = std::ranges::find_if(targetUnits, [&](const TargetUnit& t)
                                              { return t.type == element.getUnitType(); });
    if (target == std::end(targetUnits))
        return;
    const bool concerned = scope == UnitScope::All || isLacking(definitions, element.getUnit());
    if (element.hasUnit() && concerned)
        standardize(element, *target, messages);
    if (!target->standard && (!element.hasUnit() || element.getUnit() == target->unit))
    {
        element.removeAttribute(mx::ValueElement::UNIT_ATTRIBUTE);
        element.removeAttribute(mx::ValueElement::UNITTYPE_ATTRIBUTE);
    }
}

} // namespace

void useStandardUnits(const mx::DocumentPtr& document, UnitScope scope,
                      const Definitions& definitions, std::vector<ValidationMessage>& messages)
{
    for (const mx::ElementPtr& element : document->traverseTree())
        if (const auto value = element->asA<mx::ValueElement>())
            useStandardUnit(*value, scope, definitions, messages);
}

} // namespace vyr::MaterialTranslation::definitions
