#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "Report.h"

namespace vyr::assetlib
{

/// Readers of plain values. Where the value has another form they report what was expected and
/// return nothing.
std::optional<std::string_view> readText(JsonValue value, Report& report);
std::optional<bool> readBoolean(JsonValue value, Report& report);
/// A number that a 32-bit float can hold, if only roughly.
std::optional<double> readNumber(JsonValue value, Report& report);
/// A whole number of 32 bits, from `least` to `greatest`.
template <class Integer>
std::optional<Integer> readWhole(JsonValue value, Report& report,
                                 Integer least = std::numeric_limits<Integer>::min(),
                                 Integer greatest = std::numeric_limits<Integer>::max());
std::optional<std::int32_t> readInteger(JsonValue value, Report& report);
/// An array of `least` to `greatest` numbers.
std::optional<std::vector<double>> readNumbers(JsonValue value, Report& report, std::size_t least,
                                               std::size_t greatest);
/// An array of texts; what is none is reported and left out.
std::vector<std::string_view> readTexts(JsonValue value, Report& report);
/// The code of a value's unit, from its name or from the code itself, which may be of any host's own.
std::optional<std::uint32_t> readUnit(JsonValue value, Report& report);
/// The number of a length unit as OverlayTexture::unit counts them, from its name or its number.
std::optional<std::int32_t> readLengthUnit(JsonValue value, Report& report);

void reportUnknownName(JsonValue value, Report& report, std::string_view what,
                       std::span<const std::string_view> names);

/// The row whose name a text is; null after reporting a text that is none of the names.
/// @param what the names are, for the message
template <class Row>
const Row* readNamed(JsonValue value, Report& report, std::string_view what,
                     std::span<const Row> rows)
{
    const auto text = readText(value, report);
    if (!text)
        return nullptr;
    const auto row = std::ranges::find(rows, *text, &Row::name);
    if (row != rows.end())
        return &*row;
    std::vector<std::string_view> names(rows.size());
    std::ranges::transform(rows, names.begin(), &Row::name);
    reportUnknownName(value, report, what, names);
    return nullptr;
}

template <std::size_t count>
std::optional<std::array<float, count>> readFloats(JsonValue value, Report& report)
{
    const auto numbers = readNumbers(value, report, count, count);
    if (!numbers)
        return std::nullopt;
    std::array<float, count> floats{};
    for (std::size_t i = 0; i < count; ++i)
        floats[i] = static_cast<float>((*numbers)[i]);
    return floats;
}

/// Reads the members of an object by their keys. What was asked for are the known keys.
class ObjectReader
{
  public:
    /// Reports a value that is no object; it then counts as an object without members.
    ObjectReader(JsonValue value, Report& report);

    bool isObject() const { return _value.kind() == JsonValue::Kind::Object; }
    JsonValue value() const { return _value; }

    /// The member of that key, if there is one.
    std::optional<JsonValue> find(std::string_view key);
    /// The same, and reports a member that is missing.
    std::optional<JsonValue> require(std::string_view key);

    /// Replaces `target` by what `reader` makes of the member, when there is one.
    template <class Target, class Reader>
    void read(std::string_view key, Target& target, Reader reader)
    {
        take(find(key), target, reader);
    }
    template <class Target, class Reader>
    void readRequired(std::string_view key, Target& target, Reader reader)
    {
        take(require(key), target, reader);
    }

    /// Reports the members that nobody asked for.
    void reportUnknownKeys() const;

  private:
    template <class Target, class Reader>
    void take(std::optional<JsonValue> member, Target& target, Reader reader)
    {
        if (!member)
            return;
        if (auto value = reader(*member, _report))
            target = std::move(*value);
    }

    JsonValue _value;
    Report& _report;
    std::vector<std::string_view> _known;
};

} // namespace vyr::assetlib
