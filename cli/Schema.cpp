#include <algorithm>
#include <charconv>
#include <cmath>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include <MaterialTranslation/Schemas.h>

#include "CommandLine.h"
#include "Console.h"
#include "Json.h"
#include "Options.h"
#include "base/Text.h"

// What assets may say: the registry of schemas, for people and for scripts/schemas-doc.
namespace vyr::cli
{
namespace
{

using MaterialTranslation::PropertyKind;
using MaterialTranslation::PropertyRow;
using MaterialTranslation::SchemaGroup;
using MaterialTranslation::SchemaRow;

/// As asset files name them.
const char* typeName(PropertyKind kind)
{
    switch (kind)
    {
    case PropertyKind::Boolean:
        return "boolean";
    case PropertyKind::Integer:
        return "integer";
    case PropertyKind::Scalar:
    case PropertyKind::Vector:
        return "scalar";
    case PropertyKind::Color:
        return "color";
    case PropertyKind::Choice:
        return "choice";
    case PropertyKind::Uri:
        return "uri";
    case PropertyKind::Reference:
        break;
    }
    return "reference";
}

std::vector<std::string> choicesOf(const PropertyRow& row)
{
    std::istringstream names(row.choices);
    std::vector<std::string> choices;
    for (std::string name; names >> name;)
        choices.push_back(name);
    return choices;
}

/// In as few digits as tell it from its neighbours.
std::string textOf(float number)
{
    char digits[32];
    return {digits, std::to_chars(std::begin(digits), std::end(digits), number).ptr};
}

bool hasDefault(const PropertyRow& row)
{
    return row.hasFallback && !isNumbered(row) && row.kind != PropertyKind::Reference;
}

/// Empty for none; each number of a numbered property may be missing.
std::string defaultOf(const PropertyRow& row)
{
    if (!hasDefault(row))
        return {};
    const auto& [first, second, third] = row.fallback;
    switch (row.kind)
    {
    case PropertyKind::Boolean:
        return first != 0.0f ? "true" : "false";
    case PropertyKind::Color:
        return '[' + textOf(first) + ", " + textOf(second) + ", " + textOf(third) + ']';
    case PropertyKind::Choice:
        return choicesOf(row).at(static_cast<std::size_t>(first));
    case PropertyKind::Integer:
    case PropertyKind::Scalar:
    case PropertyKind::Vector:
    case PropertyKind::Uri:
    case PropertyKind::Reference:
        break;
    }
    return textOf(first);
}

std::string spanOf(const PropertyRow& row)
{
    const auto [least, most] = rangeOf(row);
    if (std::isinf(least) && std::isinf(most))
        return {};
    if (std::isinf(most))
        return textOf(least) + " and up";
    return (std::isinf(least) ? "up" : textOf(least)) + " to " + textOf(most);
}

/// "scalar (meter)", "3 scalars".
std::string kindOf(const PropertyRow& row)
{
    if (row.kind == PropertyKind::Vector)
        return "3 scalars";
    const std::string unit = *row.unit ? std::string(" (") + row.unit + ')' : "";
    return typeName(row.kind) + unit;
}

std::string asText(const PropertyRow& row)
{
    std::string text = std::string("  ") + row.name + "  " + kindOf(row);
    if (const std::string span = spanOf(row); !span.empty())
        text += ", " + span;
    if (const std::string fallback = defaultOf(row); !fallback.empty())
        text += ", default " + fallback;
    if (row.takesTexture)
        text += ", takes a texture";
    if (*row.needs)
        text += std::string(", which shows with ") + row.needs;
    text += std::string("\n      ") + row.meaning + '\n';
    for (const char* more : {row.effect, row.source})
        if (*more)
            text += std::string("      ") + more + '\n';
    for (const std::string& choice : choicesOf(row))
        text += "      - " + choice + '\n';
    return text;
}

std::span<const PropertyRow> rowsOf(const SchemaRow& schema)
{
    return {schema.properties, schema.propertyCount};
}

std::string asText(const SchemaRow& schema, bool isTexture)
{
    std::string text = std::string(schema.name) + ": " + schema.meaning + '\n';
    for (const PropertyRow& row : rowsOf(schema))
        text += asText(row);
    if (isTexture)
        for (const PropertyRow& row : rowsOf(MaterialTranslation::texturePlacement()))
            text += asText(row);
    return text;
}

/// Null for none.
void addDefault(const JsonNode& property, const PropertyRow& row)
{
    constexpr const char* key = "default";
    if (!hasDefault(row))
        property.addOrNull(key, {});
    else if (row.kind == PropertyKind::Boolean)
        property.addFlag(key, row.fallback[0] != 0.0f);
    else if (row.kind == PropertyKind::Color)
        property.addNumbers(key, row.fallback);
    else if (row.kind == PropertyKind::Choice)
        property.add(key, defaultOf(row));
    else
        property.addNumber(key, row.fallback[0]);
}

/// Every property has all keys, so that readers need no rules of what is left out.
void addProperties(const JsonNode& object, const SchemaRow& schema)
{
    const JsonNode properties = object.addList("properties");
    for (const PropertyRow& row : rowsOf(schema))
    {
        const JsonNode property = properties.addObject();
        property.add("name", row.name);
        property.add("type", typeName(row.kind));
        property.addNumber("count", row.kind == PropertyKind::Vector ? 3.0f : 1.0f);
        property.addOrNull("unit", row.unit);
        property.addNumber("least", rangeOf(row).least);
        property.addNumber("most", rangeOf(row).most);
        addDefault(property, row);
        property.add("choices", choicesOf(row));
        property.addFlag("texture", row.takesTexture);
        property.addOrNull("needs", row.needs);
        property.add("meaning", row.meaning);
        property.add("effect", row.effect);
        property.add("source", row.source);
    }
}

} // namespace

ExitStatus run(const SchemaCommand& command)
{
    std::string text;
    const JsonDocument document;
    const JsonNode list = document.root().addList("groups");
    std::vector<std::string_view> names;
    bool hasTextures = false;
    for (const SchemaGroup& group : MaterialTranslation::schemaGroups())
    {
        std::vector<SchemaRow> wanted;
        for (const SchemaRow& schema : *group.schemas)
        {
            names.emplace_back(schema.name);
            if (command.name.empty() || command.name == schema.name)
                wanted.push_back(schema);
        }
        if (wanted.empty())
            continue;
        hasTextures = hasTextures || group.areTextures;
        const JsonNode object = list.addObject();
        object.add("name", group.name);
        object.addFlag("placed", group.areTextures);
        const JsonNode schemas = object.addList("schemas");
        for (const SchemaRow& schema : wanted)
        {
            const JsonNode entry = schemas.addObject();
            entry.add("name", schema.name);
            entry.add("meaning", schema.meaning);
            addProperties(entry, schema);
            text += (text.empty() ? "" : "\n") + asText(schema, group.areTextures);
        }
    }
    if (hasTextures)
        addProperties(document.root().addObject("placement"),
                      MaterialTranslation::texturePlacement());
    if (text.empty())
    {
        complain("vyr-mtlx: there is no schema " + base::inQuotes(command.name) +
                 base::suggestion(command.name, names));
        return ExitStatus::WrongUse;
    }
    Results results;
    results.write(command.json ? document.text() : text);
    return results.delivered() ? ExitStatus::Done : ExitStatus::SomeFailed;
}

} // namespace vyr::cli
