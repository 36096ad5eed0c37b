#include "JsonReaders.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include "base/Text.h"
#include "base/Units.h"

namespace vyr::assetlib
{

namespace
{

using Kind = JsonValue::Kind;

constexpr double largestFloat = std::numeric_limits<float>::max();

/// Nothing, after reporting what was expected.
std::nullopt_t expected(JsonValue value, Report& report, const std::string& what)
{
    report.error(value, "expected " + what);
    return std::nullopt;
}

bool areNumbers(JsonItems items)
{
    for (const JsonValue item : items)
    {
        if (item.kind() != Kind::Number)
            return false;
    }
    return true;
}

} // namespace

std::optional<std::string_view> readText(JsonValue value, Report& report)
{
    if (value.kind() == Kind::Text)
        return value.text();
    return expected(value, report, "a text");
}

std::optional<bool> readBoolean(JsonValue value, Report& report)
{
    if (value.kind() == Kind::Boolean)
        return value.boolean();
    return expected(value, report, "true or false");
}

std::optional<double> readNumber(JsonValue value, Report& report)
{
    if (value.kind() != Kind::Number)
        return expected(value, report, "a number");
    const double number = value.number();
    if (std::abs(number) > largestFloat)
        return expected(value, report, "a number within the range of a 32-bit float");
    return number;
}

template <class Integer>
std::optional<Integer> readWhole(JsonValue value, Report& report, Integer least, Integer greatest)
{
    if (value.kind() == Kind::Number)
    {
        const double number = value.number();
        if (number == std::trunc(number) && number >= least && number <= greatest)
            return static_cast<Integer>(number);
    }
    return expected(value, report,
                    "a whole number from " + std::to_string(least) + " to " +
                        std::to_string(greatest));
}

std::optional<std::int32_t> readInteger(JsonValue value, Report& report)
{
    return readWhole<std::int32_t>(value, report);
}

std::optional<std::vector<double>> readNumbers(JsonValue value, Report& report, std::size_t least,
                                               std::size_t greatest)
{
    const JsonItems items = value.items();
    const bool fits = value.kind() == Kind::Array && items.size() >= least &&
                      items.size() <= greatest && areNumbers(items);
    if (!fits)
    {
        const std::string most = std::to_string(greatest) + " numbers";
        return expected(value, report,
                        least < greatest ? std::to_string(least) + " or " + most : most);
    }
    std::vector<double> numbers;
    for (const JsonValue item : items)
    {
        if (const auto number = readNumber(item, report))
            numbers.push_back(*number);
    }
    return numbers.size() == items.size() ? std::optional(std::move(numbers)) : std::nullopt;
}

std::vector<std::string_view> readTexts(JsonValue value, Report& report)
{
    std::vector<std::string_view> texts;
    if (value.kind() != Kind::Array)
    {
        expected(value, report, "an array of texts");
        return texts;
    }
    for (const JsonValue item : value.items())
    {
        if (const auto text = readText(item, report))
            texts.push_back(*text);
    }
    return texts;
}

void reportUnknownName(JsonValue value, Report& report, std::string_view what,
                       std::span<const std::string_view> names)
{
    const std::string near = base::suggestion(value.text(), names);
    report.error(value, "unknown " + std::string(what) + ' ' + base::inQuotes(value.text()) +
                            (near.empty() ? "; expected " + base::listed(names) : near));
}

std::optional<std::uint32_t> readUnit(JsonValue value, Report& report)
{
    if (value.kind() == Kind::Text)
    {
        const auto* const unit = readNamed(value, report, "unit", base::units());
        return unit ? std::optional(unit->code) : std::nullopt;
    }
    if (value.kind() != Kind::Number)
        return expected(value, report, "a unit's name or its code");
    return readWhole<std::uint32_t>(value, report);
}

std::optional<std::int32_t> readLengthUnit(JsonValue value, Report& report)
{
    const auto lengths = base::units().first(base::lengthUnitCount);
    const auto count = static_cast<std::int32_t>(lengths.size());
    if (value.kind() == Kind::Text)
    {
        const auto* const unit = readNamed(value, report, "unit", lengths);
        return unit ? std::optional(static_cast<std::int32_t>(unit - lengths.data()))
                    : std::nullopt;
    }
    if (value.kind() != Kind::Number)
        return expected(value, report, "the name of a length unit or its number");
    return readWhole<std::int32_t>(value, report, 0, count - 1);
}

ObjectReader::ObjectReader(JsonValue value, Report& report) : _value(value), _report(report)
{
    _known.reserve(8);
    if (!isObject())
        expected(value, report, "an object");
}

std::optional<JsonValue> ObjectReader::find(std::string_view key)
{
    if (std::ranges::find(_known, key) == _known.end())
        _known.push_back(key);
    return _value.member(key);
}

std::optional<JsonValue> ObjectReader::require(std::string_view key)
{
    const auto member = find(key);
    if (!member && isObject())
        expected(_value, _report, "the key " + base::inQuotes(key));
    return member;
}

void ObjectReader::reportUnknownKeys() const
{
    if (!isObject())
        return;
    for (const JsonValue member : _value.items())
    {
        if (std::ranges::find(_known, member.name()) != _known.end())
            continue;
        const std::string near = base::suggestion(member.name(), _known);
        _report.error(member.key(), near.empty() ? "unknown key; expected " + base::listed(_known)
                                                 : "unknown key" + near);
    }
}

} // namespace vyr::assetlib
