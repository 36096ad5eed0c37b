#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include <CLI/CLI.hpp>

#include <MaterialTranslation/Schemas.h>

#include "CommandLine.h"
#include "base/Text.h"

/// @file
/// Options of commands: what several of them have in common, and those that are made from tables.
namespace vyr::cli
{

// Values are read more strictly than by CLI11's own conversions, which accept "nan", read "010" as octal,
// and take "--output=-x" for a folder "-x".

/// The range of an option's numbers, both ends included.
template <class Number> struct Range
{
    Number lowest = std::numeric_limits<Number>::lowest();
    Number highest = std::numeric_limits<Number>::max();

    bool holds(Number number) const { return number >= lowest && number <= highest; }
};

/// What was expected in place of `text`.
template <class Number> std::string numberProblem(const std::string& text, Range<Number> range)
{
    if constexpr (std::is_integral_v<Number>)
        return '"' + text + "\" is no whole number from " + std::to_string(range.lowest) + " to " +
               std::to_string(range.highest);
    return '"' + text + "\" is no number";
}

/// Adds an option that takes `count` numbers and writes them to `numbers`.
template <class Number>
CLI::Option* addNumbers(CLI::App& app, const std::string& name, Number* numbers, std::size_t count,
                        const std::string& help, Range<Number> range = {})
{
    const auto read = [=](const CLI::results_t& texts)
    {
        for (std::size_t i = 0; i < count; ++i)
        {
            const std::optional<Number> number = base::numberFromText<Number>(texts.at(i));
            if (!number || !range.holds(*number))
                throw CLI::ValidationError(name, numberProblem(texts[i], range));
            numbers[i] = *number;
        }
        return true;
    };
    return app.add_option(name, read, help)->expected(static_cast<int>(count))->type_name("N");
}

template <class Number>
CLI::Option* addNumber(CLI::App& app, const std::string& name, Number& number,
                       const std::string& help, Range<Number> range = {})
{
    return addNumbers(app, name, &number, 1, help, range);
}

/// What the path of an option must be. An empty one, and one that begins with "-", is a slip of the pen more
/// often than not; "./-x" names such a file. Files need no such check: "--" in front of them says that a
/// leading "-" is meant.
inline std::string pathProblem(const std::string& path)
{
    if (path.empty())
        return "an empty path";
    if (path.front() == '-' && path != standardStream)
        return "\"" + path + "\" looks like an option (\"./" + path + "\" names such a file)";
    return {};
}

inline CLI::Option* addPath(CLI::App& app, const std::string& name, std::string& path,
                            const std::string& help)
{
    return app.add_option(name, path, help)->check(pathProblem);
}

/// Adds an option that may be given several times, with one text each time.
inline CLI::Option* addRepeatable(CLI::App& app, const std::string& name,
                                  std::vector<std::string>& texts, const std::string& help)
{
    return app.add_option(name, texts, help)
        ->expected(1)
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

/// Larger images than this are a slip of the pen: one would fill more memory than machines have.
constexpr int largestImage = 16384;
inline void addImageFile(CLI::App& app, std::string& output)
{
    addPath(app, "--output,-o", output, "image to write; the extension names the format")
        ->required()
        ->type_name("FILE");
}

/// Whether the property's name stands for many, one for each number.
inline bool isNumbered(const MaterialTranslation::PropertyRow& row)
{
    return std::string_view(row.name).find('#') != std::string_view::npos;
}

/// Adds `vyr-mtlx bake KIND` for a procedural texture, with an option for each of its properties.
/// @return null for noise, which has its own command.
CLI::App* defineBakeTexture(CLI::App& bake, const MaterialTranslation::SchemaRow& schema,
                            BakeTextureCommand& command);

} // namespace vyr::cli
