#include <algorithm>
#include <cctype>
#include <string_view>

#include "Options.h"

namespace vyr::cli
{
namespace
{

using MaterialTranslation::PropertyKind;
using MaterialTranslation::PropertyRow;

char lower(char c)
{
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

/// "--joint-width" of "tile_JointWidth", "--color" of "gradient_Color#", which is given once for each number.
std::string optionOf(std::string_view property)
{
    std::string option = "-";
    for (const char c : property.substr(property.find('_') + 1))
    {
        if (std::isupper(static_cast<unsigned char>(c)) != 0)
            option += '-';
        if (c != '#')
            option += lower(c);
    }
    return option;
}

std::string helpOf(const PropertyRow& row)
{
    std::string help = row.meaning;
    if (isNumbered(row))
        help += "; once for each";
    if (*row.unit)
        help += std::string("; in ") + row.unit + "s";
    if (*row.choices)
        help += std::string(": ") + row.choices;
    return help;
}

/// Adds the property, or each of the numbered ones, from the words of its option.
bool setProperty(const PropertyRow& row, const CLI::results_t& words,
                 std::vector<MaterialTranslation::TextureProperty>& properties)
{
    const std::string name = row.name;
    const std::string option = optionOf(name);
    if (row.kind == PropertyKind::Choice)
    {
        const std::string choices = std::string(" ") + row.choices + ' ';
        if (choices.find(' ' + words.front() + ' ') == std::string::npos)
            throw CLI::ValidationError(option,
                                       '"' + words.front() + "\" is none of " + row.choices);
        properties.push_back({name, {}, words.front()});
        return true;
    }
    const std::size_t count = row.kind == PropertyKind::Color ? 3 : 1;
    if (words.size() % count != 0)
        throw CLI::ValidationError(option, "needs three numbers each time");
    for (std::size_t i = 0; i < words.size(); ++i)
    {
        const std::optional<float> number = base::numberFromText<float>(words[i]);
        if (!number)
            throw CLI::ValidationError(option, numberProblem(words[i], Range<float>{}));
        if (i % count == 0)
            properties.push_back({name, {}, {}});
        if (const std::size_t mark = properties.back().name.find('#'); mark != std::string::npos)
            properties.back().name.replace(mark, 1, std::to_string(i / count + 1));
        properties.back().numbers.push_back(*number);
    }
    return true;
}

} // namespace

CLI::App* defineBakeTexture(CLI::App& bake, const MaterialTranslation::SchemaRow& schema,
                            BakeTextureCommand& command)
{
    std::string name = schema.name;
    name.resize(name.size() - std::string_view("Schema").size());
    std::ranges::transform(name, name.begin(), lower);
    if (name == "noise")
        return nullptr;
    command.options.schema = schema.name;
    CLI::App& app = *bake.add_subcommand(name, std::string("bake ") + schema.meaning);
    addImageFile(app, command.output);
    addNumber(app, "--resolution", command.resolution, "width and height in pixels (default 1024)",
              Range<int>{1, largestImage});
    app.add_option("--pixels", command.pixels,
                   "color (default), number (the colours' luminance) or normal (a relief)")
        ->check(CLI::IsMember({"color", "number", "normal"}))
        ->type_name("WHAT");
    for (std::size_t i = 0; i < schema.propertyCount; ++i)
    {
        const PropertyRow& row = schema.properties[i];
        const bool isColor = row.kind == PropertyKind::Color;
        CLI::Option& option = *app.add_option(
            optionOf(row.name), [&command, &row](const CLI::results_t& words)
            { return setProperty(row, words, command.options.properties); }, helpOf(row));
        option.expected(isColor ? 3 : 1)->type_name(*row.choices ? "NAME" : "N");
        if (isNumbered(row))
            option.multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    }
    return &app;
}

} // namespace vyr::cli
