#pragma once

/// @file
/// How options take their values: stricter than CLI11's own conversions, which accept "nan", read
/// "010" as octal, and take "--output=-x" for a folder "-x".

#include <cstddef>
#include <limits>
#include <locale>
#include <optional>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include <CLI/CLI.hpp>

namespace vyr::cli
{

/// The range of an option's numbers, both ends included.
template <typename Number>
struct Range
{
    Number lowest = std::numeric_limits<Number>::lowest();
    Number highest = std::numeric_limits<Number>::max();

    bool holds(Number number) const { return number >= lowest && number <= highest; }
};

/// The number that the whole text is, in decimal notation and finite; nothing for any other text.
template <typename Number>
std::optional<Number> numberFromText(const std::string& text)
{
    if (std::is_unsigned_v<Number> && text.find('-') != std::string::npos)
        return std::nullopt;
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    Number number{};
    stream >> std::noskipws >> number;
    const bool whole = !stream.fail() && stream.peek() == std::istringstream::traits_type::eof();
    return whole ? std::optional<Number>(number) : std::nullopt;
}

/// What was expected in place of `text`.
template <typename Number>
std::string numberProblem(const std::string& text, const Range<Number>& range)
{
    std::ostringstream problem;
    problem.imbue(std::locale::classic());
    problem << '"' << text << "\" is no "
            << (std::is_integral_v<Number> ? "whole number" : "number");
    if (std::is_integral_v<Number>)
        problem << " from " << range.lowest << " to " << range.highest;
    return problem.str();
}

/// Adds an option that takes `count` numbers and writes them to `numbers`.
template <typename Number>
CLI::Option* addNumbers(CLI::App& app, const std::string& name, Number* numbers, std::size_t count,
                        const std::string& help, Range<Number> range = {})
{
    const auto read = [numbers, count, name, range](const CLI::results_t& texts)
    {
        for (std::size_t i = 0; i < count; ++i)
        {
            const std::optional<Number> number = numberFromText<Number>(texts.at(i));
            if (!number || !range.holds(*number))
                throw CLI::ValidationError(name, numberProblem(texts[i], range));
            numbers[i] = *number;
        }
        return true;
    };
    return app.add_option(name, read, help)->expected(static_cast<int>(count))->type_name("N");
}

/// Adds an option that takes one number.
template <typename Number>
CLI::Option* addNumber(CLI::App& app, const std::string& name, Number& number,
                       const std::string& help, Range<Number> range = {})
{
    return addNumbers(app, name, &number, 1, help, range);
}

/// Adds an option that takes a path. An empty one, and one that begins with "-", is a slip of the
/// pen more often than not; "./-x" names such a file.
CLI::Option* addPath(CLI::App& app, const std::string& name, std::string& path,
                     const std::string& help);

/// Adds an option that may be given several times, with one text each time.
CLI::Option* addRepeatable(CLI::App& app, const std::string& name, std::vector<std::string>& texts,
                           const std::string& help);

/// What a path on the command line must be; for options only, since "--" in front of positional
/// arguments says that a leading "-" is meant.
CLI::Validator pathText();

} // namespace vyr::cli
