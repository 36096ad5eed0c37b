#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Json.h"

namespace vyr::assetlib
{

/// Readers of plain values. Where the value has another form they report what was expected and
/// return nothing.
/// The text belongs to the arena of the document.
std::optional<std::string_view> readText(const JsonNode& node, const Place& place, Report& report);
std::optional<bool> readBoolean(const JsonNode& node, const Place& place, Report& report);
/// A number that a 32-bit float can hold, if only roughly.
std::optional<double> readNumber(const JsonNode& node, const Place& place, Report& report);
/// A whole number from `least` to `greatest`.
std::optional<double> readWhole(const JsonNode& node, const Place& place, Report& report,
                                double least, double greatest);
/// A whole number of 32 bits.
std::optional<std::int32_t> readInteger(const JsonNode& node, const Place& place, Report& report);
/// An array of `least` to `greatest` numbers.
std::optional<std::vector<double>> readNumbers(const JsonNode& node, const Place& place,
                                               Report& report, std::size_t least,
                                               std::size_t greatest);
/// An array of texts; what is none is reported and left out.
std::vector<std::string_view> readTexts(const JsonNode& node, const Place& place, Report& report);

template <std::size_t count>
std::optional<std::array<float, count>> readFloats(const JsonNode& node, const Place& place,
                                                   Report& report)
{
    const auto numbers = readNumbers(node, place, report, count, count);
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
    /// Reports a node that is no object; it then counts as an object without members.
    ObjectReader(const JsonNode& node, const Place& place, Report& report);

    bool isObject() const { return _node.kind() == JsonNode::Kind::Object; }
    Report& report() const { return _report; }
    Place at(std::string_view key) const { return _place.key(key); }

    /// The member of that key; null when there is none.
    const JsonNode* find(std::string_view key);
    /// The same, and reports a member that is missing.
    const JsonNode* require(std::string_view key);

    /// Replaces `target` by what `reader` makes of the member, when there is one.
    template <class Target, class Reader>
    void read(std::string_view key, Target& target, Reader reader)
    {
        if (const JsonNode* member = find(key))
            take(*member, target, reader);
    }
    template <class Target, class Reader>
    void readRequired(std::string_view key, Target& target, Reader reader)
    {
        if (const JsonNode* member = require(key))
            take(*member, target, reader);
    }

    /// Reports the members that nobody asked for.
    void reportUnknownKeys() const;

  private:
    template <class Target, class Reader>
    void take(const JsonNode& member, Target& target, Reader reader)
    {
        if (auto value = reader(member, at(member.key()), _report))
            target = std::move(*value);
    }

    const JsonNode& _node;
    const Place& _place;
    Report& _report;
    std::vector<std::string_view> _known;
};

} // namespace vyr::assetlib
