#include "Loading.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <map>

#include <kelvor/platform/assets/PropertyType.h>

#include "JsonReaders.h"

namespace vyr::assetlib
{

namespace
{

using Kind = JsonValue::Kind;

/// What the reader of a value needs beside the value.
struct ValueContext
{
    FileContext& file;
    /// For messages: the id of the asset, or of the asset around it.
    std::string_view owner;
    std::string_view property;
    std::uint32_t unit = 0;

    Report& report() const { return file.report; }
    Arena& arena() const { return file.arena(); }
};

using ReadValue = Value (*)(JsonValue value, const ValueContext& context);

Value readStringValue(JsonValue value, const ValueContext& context)
{
    const auto text = readText(value, context.report());
    return text ? context.arena().make<StringValue>(context.file.keep(*text)) : nullptr;
}

Value readUriValue(JsonValue value, const ValueContext& context)
{
    const std::string* path = context.file.findImage(value, context.owner, context.property);
    return path ? context.arena().make<UriValue>(context.file.keep(*path)) : nullptr;
}

Value readBooleanValue(JsonValue value, const ValueContext& context)
{
    const auto boolean = readBoolean(value, context.report());
    return boolean ? context.arena().make<BooleanValue>(*boolean) : nullptr;
}

/// One component as it stands, or an array of at least one.
template <class T, class Reader>
std::vector<T> readComponents(JsonValue value, Report& report, Reader reader)
{
    std::vector<T> components;
    const auto read = [&](JsonValue component)
    {
        if (const auto number = reader(component, report))
            components.push_back(*number);
    };
    if (value.kind() != Kind::Array)
        read(value);
    else if (value.items().empty())
        report.error(value, "expected at least one number");
    else
    {
        for (const JsonValue item : value.items())
            read(item);
    }
    return components;
}

Value readIntegerValue(JsonValue value, const ValueContext& context)
{
    const auto components = readComponents<std::int32_t>(value, context.report(), readInteger);
    return context.arena().make<IntegerValue>(context.arena().keep(components));
}

Value readScalarValue(JsonValue value, const ValueContext& context)
{
    const auto components = readComponents<double>(value, context.report(), readNumber);
    return context.arena().make<ScalarValue>(context.arena().keep(components), context.unit);
}

Value readColorValue(JsonValue value, const ValueContext& context)
{
    const auto channels = readNumbers(value, context.report(), 3, 4);
    return channels ? context.arena().make<ColorValue>(*channels) : nullptr;
}

/// A list that offers just what is selected, each name once.
Value choiceOfSelected(const std::vector<std::string_view>& names, const FileContext& file)
{
    std::vector<Choice> choices;
    std::vector<std::int32_t> selected;
    std::map<std::string_view, std::int32_t> indices;
    for (const std::string_view name : names)
    {
        const auto [entry, isNew] =
            indices.try_emplace(name, static_cast<std::int32_t>(choices.size()));
        if (isNew)
            choices.emplace_back(file.keep(name));
        selected.push_back(entry->second);
    }
    return file.arena().make<ChoiceListValue>(file.arena().keep(choices),
                                              file.arena().keep(selected));
}

/// Indices of choices, of which so many are offered.
std::vector<std::int32_t> readSelected(JsonValue value, Report& report, std::int32_t offered)
{
    if (value.kind() != Kind::Array)
    {
        report.error(value, "expected an array of indices");
        return {};
    }
    std::vector<std::int32_t> selected;
    for (const JsonValue item : value.items())
    {
        if (offered == 0)
            report.error(item, "expected no index, since there are no choices");
        else if (const auto index = readWhole(item, report, 0, offered - 1))
            selected.push_back(*index);
    }
    return selected;
}

/// {"choices": [names], "selected": [indices]}
Value readFullChoice(JsonValue value, const ValueContext& context)
{
    ObjectReader object(value, context.report());
    std::vector<Choice> choices;
    std::int32_t offered = 0;
    if (const auto names = object.require("choices"))
    {
        offered = static_cast<std::int32_t>(names->items().size());
        for (const std::string_view name : readTexts(*names, context.report()))
            choices.emplace_back(context.file.keep(name));
    }
    std::vector<std::int32_t> selected;
    if (const auto indices = object.require("selected"))
        selected = readSelected(*indices, context.report(), offered);
    object.reportUnknownKeys();
    return context.arena().make<ChoiceListValue>(context.arena().keep(choices),
                                                 context.arena().keep(selected));
}

Value readChoiceValue(JsonValue value, const ValueContext& context)
{
    switch (value.kind())
    {
    case Kind::Text:
        return choiceOfSelected({value.text()}, context.file);
    case Kind::Array:
        return choiceOfSelected(readTexts(value, context.report()), context.file);
    case Kind::Object:
        return readFullChoice(value, context);
    default:
        context.report().error(value,
                               "expected a choice's name, an array of names, or an object with "
                               "\"choices\" and \"selected\"");
        return {};
    }
}

Value refuseValue(JsonValue value, const ValueContext& context)
{
    context.report().error(value, "expected no value: this type only carries \"connected\"");
    return {};
}

struct TypeRow
{
    std::string_view name;
    platform::PropertyType code;
    ReadValue readValue;
    /// The kind of value that stands for a whole property of this type, if one does.
    std::optional<Kind> shortForm = std::nullopt;
};

constexpr TypeRow types[] = {
    {"string", platform::ePropertyType_String, readStringValue},
    {"uri", platform::ePropertyType_URI, readUriValue},
    {"boolean", platform::ePropertyType_Boolean, readBooleanValue, Kind::Boolean},
    {"integer", platform::ePropertyType_Integer, readIntegerValue},
    {"scalar", platform::ePropertyType_Scalar, readScalarValue, Kind::Number},
    {"color", platform::ePropertyType_Color, readColorValue, Kind::Array},
    {"reference", platform::ePropertyType_Reference, refuseValue},
    {"choice", platform::ePropertyType_ChoiceList, readChoiceValue},
    {"text", platform::ePropertyType_Text, readStringValue},
    {"referenceList", platform::ePropertyType_ReferenceList, refuseValue},
};

PropertyParts readLongForm(JsonValue member, ValueContext& context)
{
    Report& report = context.report();
    ObjectReader object(member, report);
    const auto name = object.require("type");
    const auto* const type =
        name ? readNamed(*name, report, "type", std::span<const TypeRow>(types)) : nullptr;
    const auto value = object.find("value");
    const auto unit = object.find("unit");
    const auto connected = object.find("connected");
    object.reportUnknownKeys();
    if (!type)
        return {Property(context.property, 0, nullptr), connected};

    if (unit && type->code != platform::ePropertyType_Scalar)
        report.error(*unit, "expected no unit: only a scalar has one");
    else if (unit)
        context.unit = readUnit(*unit, report).value_or(0);
    const Value held = value ? type->readValue(*value, context) : nullptr;
    return {Property(context.property, type->code, held), connected};
}

} // namespace

std::optional<PropertyParts> readProperty(JsonValue member, FileContext& file,
                                          std::string_view owner)
{
    ValueContext context{file, owner, file.keepCommon(member.name())};
    if (member.kind() == Kind::Object)
        return readLongForm(member, context);
    const auto* const type = std::ranges::find(types, member.kind(), &TypeRow::shortForm);
    if (type == std::end(types))
    {
        file.report.error(member, "expected an object, true or false, a number, or 3 or 4 numbers");
        return std::nullopt;
    }
    return PropertyParts{Property(context.property, type->code, type->readValue(member, context))};
}

} // namespace vyr::assetlib
