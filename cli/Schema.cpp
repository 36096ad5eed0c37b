#include <algorithm>
#include <charconv>
#include <cmath>
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
using MaterialTranslation::SchemaRow;

/// Schemas of one sort. Names are those of headings.
struct Group
{
    const char* name;
    const std::vector<SchemaRow>& (*schemas)();
};

constexpr Group groups[] = {
    {"Legacy materials", MaterialTranslation::legacyMaterials},
    {"Procedural textures", MaterialTranslation::proceduralTextures},
};

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
        return "scalar";
    case PropertyKind::Color:
        return "color";
    case PropertyKind::Choice:
        break;
    }
    return "choice";
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

/// Empty where each number of a numbered property may be missing.
std::string defaultOf(const PropertyRow& row)
{
    if (isNumbered(row))
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
        break;
    }
    return textOf(first);
}

std::string rangeOf(const PropertyRow& row)
{
    if (std::isinf(row.least) && std::isinf(row.most))
        return {};
    if (std::isinf(row.most))
        return textOf(row.least) + " and up";
    return (std::isinf(row.least) ? "up" : textOf(row.least)) + " to " + textOf(row.most);
}

std::string asText(const SchemaRow& schema)
{
    std::string text = std::string(schema.name) + ": " + schema.meaning + '\n';
    for (std::size_t i = 0; i < schema.propertyCount; ++i)
    {
        const PropertyRow& row = schema.properties[i];
        text += std::string("  ") + row.name + "  " + typeName(row.kind);
        if (*row.unit)
            text += std::string(" in ") + row.unit + 's';
        if (const std::string range = rangeOf(row); !range.empty())
            text += ", " + range;
        if (const std::string fallback = defaultOf(row); !fallback.empty())
            text += ", default " + fallback;
        if (row.takesTexture)
            text += ", takes a texture";
        text += std::string("\n      ") + row.meaning + '\n';
        for (const char* more : {row.effect, row.source})
            if (*more)
                text += std::string("      ") + more + '\n';
        for (const std::string& choice : choicesOf(row))
            text += "      - " + choice + '\n';
    }
    return text;
}

/// Null where each number of a numbered property may be missing.
void addDefault(const JsonNode& property, const PropertyRow& row)
{
    constexpr const char* key = "default";
    if (isNumbered(row))
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
void addSchema(const JsonNode& object, const SchemaRow& schema)
{
    object.add("name", schema.name);
    object.add("meaning", schema.meaning);
    const JsonNode properties = object.addList("properties");
    for (std::size_t i = 0; i < schema.propertyCount; ++i)
    {
        const PropertyRow& row = schema.properties[i];
        const JsonNode property = properties.addObject();
        property.add("name", row.name);
        property.add("type", typeName(row.kind));
        property.addOrNull("unit", row.unit);
        property.addNumber("least", row.least);
        property.addNumber("most", row.most);
        addDefault(property, row);
        property.add("choices", choicesOf(row));
        property.addFlag("texture", row.takesTexture);
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
    for (const Group& group : groups)
    {
        std::vector<SchemaRow> wanted;
        for (const SchemaRow& schema : group.schemas())
        {
            names.emplace_back(schema.name);
            if (command.name.empty() || command.name == schema.name)
                wanted.push_back(schema);
        }
        if (wanted.empty())
            continue;
        const JsonNode object = list.addObject();
        object.add("name", group.name);
        const JsonNode schemas = object.addList("schemas");
        for (const SchemaRow& schema : wanted)
        {
            addSchema(schemas.addObject(), schema);
            text += (text.empty() ? "" : "\n") + asText(schema);
        }
    }
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
