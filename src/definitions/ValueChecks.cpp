#include "definitions/Checks.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include <fmt/format.h>

#include "base/Paths.h"
#include "base/Text.h"

namespace vyr::MaterialTranslation::definitions
{

namespace mx = MaterialX;

namespace
{

template <class Number> bool isNumber(std::string_view text)
{
    return base::numberFromText<Number>(text).has_value();
}

struct NumberType
{
    std::string_view name;
    bool (*isNumber)(std::string_view);
    std::size_t components;
};

// MaterialX has seen to the range of a float, and takes a number too small for one as 0.
constexpr NumberType numberTypes[] = {
    {"integer", isNumber<int>, 1},      {"float", isNumber<double>, 1},
    {"color3", isNumber<double>, 3},    {"color4", isNumber<double>, 4},
    {"vector2", isNumber<double>, 2},   {"vector3", isNumber<double>, 3},
    {"vector4", isNumber<double>, 4},   {"matrix33", isNumber<double>, 9},
    {"matrix44", isNumber<double>, 16},
};

/// Whether the numbers between the separators fill whole values. Arrays of colours and vectors are texts to
/// MaterialX.
bool areNumbers(const std::string& text, const NumberType& type)
{
    const mx::StringVec parts = mx::splitString(text, ", \t\r\n");
    return parts.size() % type.components == 0 && std::ranges::all_of(parts, type.isNumber);
}

/// Whether nothing is left over in a text that MaterialX can read as a value of the type. It stops where a
/// number ends: of "0,5" it takes the 0. Texts of types without numbers are whole.
bool isWhole(const std::string& text, std::string_view type)
{
    constexpr std::string_view suffix = "array";
    const bool isArray = type.ends_with(suffix);
    if (isArray)
        type.remove_suffix(suffix.size());
    const auto* known = std::ranges::find(numberTypes, type, &NumberType::name);
    if (known == std::end(numberTypes))
        return true;
    return isArray || known->components > 1 ? areNumbers(text, *known)
                                            : known->isNumber(mx::trimSpaces(text));
}

/// What the definition of a node says about its input; null without a definition.
mx::InputPtr declarationOf(const mx::ValueElement& input)
{
    const auto node = input.getParent()->asA<mx::Node>();
    const mx::NodeDefPtr definition = node ? node->getNodeDef() : nullptr;
    return definition ? definition->getActiveInput(input.getName()) : nullptr;
}

/// Shaders cannot be generated for other texts than those that a definition lists; for other types its list only
/// makes proposals. An empty text chooses nothing.
void checkChoice(const mx::ValueElement& value, Checks& checks)
{
    const bool isText = value.getType() == mx::STRING_TYPE_STRING;
    const std::string chosen = isText ? mx::trimSpaces(value.getValueString()) : std::string();
    const mx::InputPtr declared = chosen.empty() ? nullptr : declarationOf(value);
    if (!declared)
        return;
    const std::string& choices = declared->getAttribute(mx::ValueElement::ENUM_ATTRIBUTE);
    const mx::StringVec all = mx::splitString(choices, ",");
    if (!all.empty() && std::ranges::find(all, chosen, mx::trimSpaces) == all.end())
        checks.report(value, ValidationCode::ChoiceUnknown,
                      fmt::format("\"{}\" is none of the choices: {}", chosen, choices));
}

/// For a unit of another kind than the input takes no shader can be generated.
void checkUnit(const mx::ValueElement& value, Checks& checks)
{
    if (!value.hasUnitType())
        return;
    const std::string& type = value.getUnitType();
    const mx::InputPtr input = declarationOf(value);
    if (input && input->hasUnitType() && input->getUnitType() != type)
        checks.report(value, ValidationCode::UnitMisfit,
                      fmt::format("the unit is of the kind \"{}\", but the input takes a \"{}\"",
                                  type, input->getUnitType()));
    if (!value.hasUnit() && value.hasValueString())
        checks.report(
            value, ValidationCode::UnitMissing,
            fmt::format("the value has the unit type \"{}\" but no unit, so nobody can tell "
                        "how much it is; add the unit, or take the unit type away",
                        type));
}

/// The file name with prefixes and tokens applied as MaterialX does. An absolute name has no prefix.
std::string resolvedName(const mx::ValueElement& value)
{
    const std::string& name = value.getValueString();
    const std::string& prefix =
        mx::FilePath(name).isAbsolute() ? mx::EMPTY_STRING : value.getActiveFilePrefix();
    // Looking tokens up costs more than all other checks of a document.
    if (name.find('[') == std::string::npos)
        return prefix + name;
    const mx::StringResolverPtr resolver = value.createStringResolver();
    resolver->setFilePrefix(prefix);
    return value.getResolvedValueString(resolver);
}

/// Names with places for the renderer to fill in, such as "<UDIM>", are not looked up.
void checkFile(const mx::ValueElement& value, Checks& checks)
{
    if (value.getType() != mx::FILENAME_TYPE_STRING || value.getValueString().empty())
        return;
    const std::string name = resolvedName(value);
    if (name.find_first_of("<{") != std::string::npos)
        return;
    const std::string path = checks.searchPath.find(mx::FilePath(name)).asString();
    if (!base::isFile(base::pathFromUtf8(path)))
        checks.report(value, ValidationCode::FileMissing, "there is no file \"" + name + "\"");
}

} // namespace

void checkWholeText(const mx::ValueElement& value, Checks& checks)
{
    const std::string& text = value.getValueString();
    const std::string& type = value.getType();
    // What MaterialX cannot read at all it tells of itself.
    if (!text.empty() && !isWhole(text, type) && value.getValue())
        checks.report(value, ValidationCode::ValueInvalid,
                      fmt::format("\"{}\" as a whole is no value of type \"{}\"", text, type));
}

void checkValue(const mx::ValueElement& value, Checks& checks)
{
    checkWholeText(value, checks);
    checkChoice(value, checks);
    checkUnit(value, checks);
    checkFile(value, checks);
}

} // namespace vyr::MaterialTranslation::definitions
