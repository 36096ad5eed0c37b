#include "PropertyReader.h"

#include <algorithm>
#include <array>
#include <map>

#include <kelvor/platform/assets/PropertyType.h>

#include "Fields.h"
#include "Units.h"
#include "Words.h"

namespace vyr::assetlib
{

namespace
{

using Kind = JsonNode::Kind;

/// What the reader of a value needs beside the value.
struct ValueScope
{
    const PropertyOwner& owner;
    std::string_view property = {};
    std::uint32_t unit = 0;

    Report& report() const { return owner.file.report; }
    Arena& arena() const { return owner.file.arena(); }
};

using ReadValue = Value (*)(const JsonNode& node, const Place& place, const ValueScope& scope);

Value readStringValue(const JsonNode& node, const Place& place, const ValueScope& scope)
{
    const auto text = readText(node, place, scope.report());
    return text ? scope.arena().make<StringValue>(*text) : nullptr;
}

Value readUriValue(const JsonNode& node, const Place& place, const ValueScope& scope)
{
    const auto text = readText(node, place, scope.report());
    if (!text)
        return {};
    const ImageFinder::Image& image = scope.owner.file.images.find(std::string(*text));
    if (!image.remark.empty())
        scope.report().warning(place, scope.owner.id, scope.property, image.remark);
    return scope.arena().make<UriValue>(scope.arena().keepText(image.path));
}

Value readBooleanValue(const JsonNode& node, const Place& place, const ValueScope& scope)
{
    const auto value = readBoolean(node, place, scope.report());
    return value ? scope.arena().make<BooleanValue>(*value) : nullptr;
}

/// One component as it stands, or an array of at least one.
template <class T, class Reader>
std::vector<T> readComponents(const JsonNode& node, const Place& place, Report& report,
                              Reader reader)
{
    std::vector<T> components;
    const auto read = [&](const JsonNode& component, const Place& at)
    {
        if (const auto number = reader(component, at, report))
            components.push_back(*number);
    };
    if (node.kind() != Kind::Array)
        read(node, place);
    else if (node.items().empty())
        report.error(place, "expected at least one number");
    for (std::size_t i = 0; node.kind() == Kind::Array && i < node.items().size(); ++i)
        read(node.items()[i], place.item(i));
    return components;
}

Value readIntegerValue(const JsonNode& node, const Place& place, const ValueScope& scope)
{
    return scope.arena().make<IntegerValue>(
        scope.arena().keep(readComponents<std::int32_t>(node, place, scope.report(), readInteger)));
}

Value readScalarValue(const JsonNode& node, const Place& place, const ValueScope& scope)
{
    const auto components = readComponents<double>(node, place, scope.report(), readNumber);
    return scope.arena().make<ScalarValue>(scope.arena().keep(components), scope.unit);
}

Value readColorValue(const JsonNode& node, const Place& place, const ValueScope& scope)
{
    const auto channels = readNumbers(node, place, scope.report(), 3, 4);
    if (!channels)
        return {};
    const std::vector<double>& c = *channels;
    return scope.arena().make<ColorValue>(c[0], c[1], c[2], c.size() > 3 ? c[3] : 1.0);
}

/// A list that offers just what is selected, each name once.
Value choiceOfSelected(const std::vector<std::string_view>& names, Arena& arena)
{
    std::vector<Choice> choices;
    std::vector<std::int32_t> selected;
    std::map<std::string_view, std::int32_t> indices;
    for (const std::string_view name : names)
    {
        const auto [entry, isNew] =
            indices.try_emplace(name, static_cast<std::int32_t>(choices.size()));
        if (isNew)
            choices.emplace_back(name);
        selected.push_back(entry->second);
    }
    return arena.make<ChoiceListValue>(arena.keep(choices), arena.keep(selected));
}

/// {"choices": [names], "selected": [indices]}
Value readFullChoice(const JsonNode& node, const Place& place, const ValueScope& scope)
{
    Report& report = scope.report();
    ObjectReader object(node, place, report);
    std::vector<Choice> choices;
    std::size_t offered = 0;
    if (const JsonNode* names = object.require("choices"))
    {
        offered = names->items().size();
        for (const std::string_view name : readTexts(*names, object.at("choices"), report))
            choices.emplace_back(name);
    }
    std::vector<std::int32_t> selected;
    const auto readIndex = [&](const JsonNode& item, const Place& at,
                               Report&) -> std::optional<std::int32_t>
    {
        if (offered == 0)
        {
            report.error(at, "expected no index, since there are no choices");
            return std::nullopt;
        }
        const auto index = readWhole(item, at, report, 0.0, static_cast<double>(offered - 1));
        return index ? std::optional(static_cast<std::int32_t>(*index)) : std::nullopt;
    };
    if (const JsonNode* indices = object.require("selected"))
    {
        const Place at = object.at("selected");
        if (indices->kind() != Kind::Array)
            report.error(at, "expected an array of indices");
        else if (!indices->items().empty())
            selected = readComponents<std::int32_t>(*indices, at, report, readIndex);
    }
    object.reportUnknownKeys();
    return scope.arena().make<ChoiceListValue>(scope.arena().keep(choices),
                                               scope.arena().keep(selected));
}

Value readChoiceValue(const JsonNode& node, const Place& place, const ValueScope& scope)
{
    switch (node.kind())
    {
    case Kind::Text:
        return choiceOfSelected({node.text()}, scope.arena());
    case Kind::Array:
        return choiceOfSelected(readTexts(node, place, scope.report()), scope.arena());
    case Kind::Object:
        return readFullChoice(node, place, scope);
    default:
        scope.report().error(place,
                             "expected a choice's name, an array of names, or an object with "
                             "\"choices\" and \"selected\"");
        return {};
    }
}

Value refuseValue(const JsonNode&, const Place& place, const ValueScope& scope)
{
    scope.report().error(place, "expected no value: this type only carries \"connected\"");
    return {};
}

struct TypeRow
{
    std::string_view name;
    platform::PropertyType code;
    ReadValue readValue;
};

constexpr std::array types = {
    TypeRow{"string", platform::ePropertyType_String, readStringValue},
    TypeRow{"uri", platform::ePropertyType_URI, readUriValue},
    TypeRow{"boolean", platform::ePropertyType_Boolean, readBooleanValue},
    TypeRow{"integer", platform::ePropertyType_Integer, readIntegerValue},
    TypeRow{"scalar", platform::ePropertyType_Scalar, readScalarValue},
    TypeRow{"color", platform::ePropertyType_Color, readColorValue},
    TypeRow{"reference", platform::ePropertyType_Reference, refuseValue},
    TypeRow{"choice", platform::ePropertyType_ChoiceList, readChoiceValue},
    TypeRow{"text", platform::ePropertyType_Text, readStringValue},
    TypeRow{"referenceList", platform::ePropertyType_ReferenceList, refuseValue},
};

constexpr auto typeNames = []
{
    std::array<std::string_view, types.size()> names;
    for (std::size_t i = 0; i < names.size(); ++i)
        names[i] = types[i].name;
    return names;
}();

const TypeRow* readType(ObjectReader& object)
{
    const JsonNode* node = object.require("type");
    if (!node)
        return nullptr;
    const Place place = object.at("type");
    const auto text = readText(*node, place, object.report());
    if (!text)
        return nullptr;
    const auto row = std::find(typeNames.begin(), typeNames.end(), *text);
    if (row != typeNames.end())
        return &types[static_cast<std::size_t>(row - typeNames.begin())];
    const std::string near = suggestion(*text, typeNames);
    object.report().error(place, "unknown type " + inQuotes(*text) +
                                     (near.empty() ? "; expected " + listed(typeNames) : near));
    return nullptr;
}

std::optional<PropertyParts> readLongForm(const JsonNode& node, const Place& place,
                                          const PropertyOwner& owner)
{
    Report& report = owner.file.report;
    ObjectReader object(node, place, report);
    const TypeRow* type = readType(object);
    const JsonNode* value = object.find("value");
    const JsonNode* unit = object.find("unit");
    const JsonNode* connected = object.find("connected");
    object.reportUnknownKeys();
    if (!type)
        return PropertyParts{Property(node.key(), 0, nullptr), connected};

    ValueScope scope{owner, node.key()};
    if (unit && type->code != platform::ePropertyType_Scalar)
        report.error(object.at("unit"), "expected no unit: only a scalar has one");
    else if (unit)
        scope.unit = readUnit(*unit, object.at("unit"), report).value_or(0);
    const Value held = value ? type->readValue(*value, object.at("value"), scope) : nullptr;
    return PropertyParts{Property(node.key(), type->code, held), connected};
}

std::optional<platform::PropertyType> shortFormType(Kind kind)
{
    switch (kind)
    {
    case Kind::Boolean:
        return platform::ePropertyType_Boolean;
    case Kind::Number:
        return platform::ePropertyType_Scalar;
    case Kind::Array:
        return platform::ePropertyType_Color;
    default:
        return std::nullopt;
    }
}

} // namespace

std::optional<PropertyParts> readProperty(const JsonNode& node, const Place& place,
                                          const PropertyOwner& owner)
{
    if (node.kind() == Kind::Object)
        return readLongForm(node, place, owner);
    const auto type = shortFormType(node.kind());
    if (!type)
    {
        owner.file.report.error(place,
                                "expected an object, true or false, a number, or 3 or 4 numbers");
        return std::nullopt;
    }
    const auto row = std::find_if(types.begin(), types.end(), [&](const TypeRow& candidate)
                                  { return candidate.code == *type; });
    const Value value = row->readValue(node, place, ValueScope{owner, node.key()});
    return PropertyParts{Property(node.key(), *type, value), nullptr};
}

} // namespace vyr::assetlib
