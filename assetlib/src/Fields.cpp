#include "Fields.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "Words.h"

namespace vyr::assetlib
{

namespace
{

using Kind = JsonNode::Kind;

bool isNumber(const JsonNode& node)
{
    return node.kind() == Kind::Number;
}

} // namespace

std::optional<std::string_view> readText(const JsonNode& node, const Place& place, Report& report)
{
    if (node.kind() == Kind::Text)
        return node.text();
    report.error(place, "expected a text");
    return std::nullopt;
}

std::optional<bool> readBoolean(const JsonNode& node, const Place& place, Report& report)
{
    if (node.kind() == Kind::Boolean)
        return node.boolean();
    report.error(place, "expected true or false");
    return std::nullopt;
}

std::optional<double> readNumber(const JsonNode& node, const Place& place, Report& report)
{
    if (!isNumber(node))
        report.error(place, "expected a number");
    else if (std::abs(node.number()) > static_cast<double>(std::numeric_limits<float>::max()))
        report.error(place, "expected a number within the range of a 32-bit float");
    else
        return node.number();
    return std::nullopt;
}

std::optional<double> readWhole(const JsonNode& node, const Place& place, Report& report,
                                double least, double greatest)
{
    const bool isWhole = isNumber(node) && node.number() == std::trunc(node.number());
    if (isWhole && node.number() >= least && node.number() <= greatest)
        return node.number();
    const auto text = [](double number)
    { return std::to_string(static_cast<std::int64_t>(number)); };
    report.error(place, "expected a whole number from " + text(least) + " to " + text(greatest));
    return std::nullopt;
}

std::optional<std::int32_t> readInteger(const JsonNode& node, const Place& place, Report& report)
{
    using Limits = std::numeric_limits<std::int32_t>;
    const auto whole = readWhole(node, place, report, Limits::min(), Limits::max());
    return whole ? std::optional(static_cast<std::int32_t>(*whole)) : std::nullopt;
}

std::optional<std::vector<double>> readNumbers(const JsonNode& node, const Place& place,
                                               Report& report, std::size_t least,
                                               std::size_t greatest)
{
    const std::size_t count = node.items().size();
    const bool fits = node.kind() == Kind::Array && count >= least && count <= greatest &&
                      std::ranges::all_of(node.items(), isNumber);
    if (!fits)
    {
        const std::string most = std::to_string(greatest);
        report.error(place, "expected " +
                                (least < greatest ? std::to_string(least) + " or " + most : most) +
                                " numbers");
        return std::nullopt;
    }
    std::vector<double> numbers;
    for (std::size_t i = 0; i < count; ++i)
    {
        if (const auto number = readNumber(node.items()[i], place.item(i), report))
            numbers.push_back(*number);
    }
    return numbers.size() == count ? std::optional(std::move(numbers)) : std::nullopt;
}

std::vector<std::string_view> readTexts(const JsonNode& node, const Place& place, Report& report)
{
    std::vector<std::string_view> texts;
    if (node.kind() != Kind::Array)
        report.error(place, "expected an array of texts");
    for (std::size_t i = 0; node.kind() == Kind::Array && i < node.items().size(); ++i)
    {
        if (auto text = readText(node.items()[i], place.item(i), report))
            texts.push_back(*text);
    }
    return texts;
}

ObjectReader::ObjectReader(const JsonNode& node, const Place& place, Report& report)
    : _node(node), _place(place), _report(report)
{
    _known.reserve(8);
    if (!isObject())
        report.error(place, "expected an object");
}

const JsonNode* ObjectReader::find(std::string_view key)
{
    if (std::ranges::find(_known, key) == _known.end())
        _known.push_back(key);
    if (!isObject())
        return nullptr;
    const auto member = std::ranges::find_if(_node.items(), [&](const JsonNode& item)
                                             { return item.key() == key; });
    return member != _node.items().end() ? &*member : nullptr;
}

const JsonNode* ObjectReader::require(std::string_view key)
{
    const JsonNode* member = find(key);
    if (!member && isObject())
        _report.error(_place, "expected the key " + inQuotes(key));
    return member;
}

void ObjectReader::reportUnknownKeys() const
{
    if (!isObject())
        return;
    for (const JsonNode& member : _node.items())
    {
        if (std::ranges::find(_known, member.key()) != _known.end())
            continue;
        const std::string near = suggestion(member.key(), _known);
        _report.error(at(member.key()), near.empty() ? "unknown key; expected " + listed(_known)
                                                     : "unknown key" + near);
    }
}

} // namespace vyr::assetlib
