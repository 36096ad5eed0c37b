#include "textures/PropertyValues.h"

#include <string>
#include <string_view>

#include "assets/ColorModes.h"
#include "textures/Patterns.h"

namespace vyr::MaterialTranslation::textures
{

namespace
{

using Value = std::array<float, 3>;

/// MaterialX's kind of unit of a row's numbers; empty where they have none.
const char* unitTypeOf(const PropertyRow& row)
{
    const std::string_view unit = row.unit;
    return unit == "meter" ? base::distanceUnitType : unit == "degree" ? base::angleUnitType : "";
}

float readNumber(const PropertyRow& row, const assets::Property& property, const Log& log)
{
    const char* const type = unitTypeOf(row);
    if (!*type)
        return property.bareNumber(log);
    property.unit(type, log); // says when it is none of this kind
    return static_cast<float>(static_cast<double>(property.number()) *
                              base::unitSize(property.unitCode(), type));
}

Value readColor(const assets::Asset& asset, const char* name, std::optional<std::int32_t> colorMode,
                const Log& log)
{
    if (!colorMode)
        return asset[name].color();
    const assets::ShaderColor color =
        assets::ColorReader{asset, *colorMode, log}.linear(name, assets::ShaderColor(0.0f));
    return {color[0], color[1], color[2]};
}

std::string prefixOf(std::string_view name)
{
    return std::string(name.substr(0, name.find('_') + 1));
}

float readChoice(const PropertyRow& row, const assets::Property& property, const Log& log)
{
    const std::string choice = property.choice("");
    const std::string prefix = prefixOf(property.name());
    const std::string ownName =
        choice.starts_with(prefix) ? prefixOf(row.choices) + choice.substr(prefix.size()) : choice;
    if (const auto place = choicePlace(row, ownName))
        return static_cast<float>(*place);
    if (!choice.empty())
        log.warning(DiagnosticCode::ChoiceUnknown, property.name(),
                    "\"" + choice + "\" is none of " + row.choices +
                        "; taken as the first of them");
    return 0.0f;
}

} // namespace

std::optional<Value> readPropertyValue(const assets::Asset& asset, const PropertyRow& row,
                                       const char* name, std::optional<std::int32_t> colorMode,
                                       const Log& log)
{
    const assets::Property property = asset[name];
    if (!property.hasValue())
        return std::nullopt;
    Value value{};
    switch (row.kind)
    {
    case PropertyKind::Boolean:
        value[0] = property.boolean() ? 1.0f : 0.0f;
        break;
    case PropertyKind::Integer:
        value[0] = static_cast<float>(property.integer());
        break;
    case PropertyKind::Scalar:
        value[0] = readNumber(row, property, log);
        break;
    case PropertyKind::Color:
        return readColor(asset, name, colorMode, log);
    case PropertyKind::Choice:
        value[0] = readChoice(row, property, log);
        break;
    case PropertyKind::Vector:
    case PropertyKind::Uri:
    case PropertyKind::Reference:
        return std::nullopt; // no legacy material or pattern has such properties
    }
    if (const std::string done = takeInside(row, value); !done.empty())
        log.warning(DiagnosticCode::ValueAdjusted, name, done);
    return value;
}

} // namespace vyr::MaterialTranslation::textures
