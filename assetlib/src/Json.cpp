#include "Json.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <numeric>
#include <set>

#include <nlohmann/json.hpp>

namespace vyr::assetlib
{

namespace
{

/// Stands for a number that no double can hold: no float can hold it either.
constexpr std::string_view tooLarge = "9e99";
/// So many of them are replaced in one file, each at the cost of parsing again.
constexpr int maxReplacements = 32;
constexpr int overflowId = 406;

/// The parser's text for people, without its prefix, its position and the text that it read last,
/// which may be long and no UTF-8.
std::string reasonOf(std::string_view what)
{
    constexpr std::string_view start = "syntax error ";
    constexpr std::string_view lastRead = "; last read: '";
    constexpr std::string_view expected = "'; expected ";
    const auto at = what.find(start);
    if (at == what.npos)
        return "cannot be parsed";
    what.remove_prefix(at + start.size());
    const auto read = what.find(lastRead);
    std::string reason(what.substr(0, read));
    if (const auto tail = what.rfind(expected); read != what.npos && tail != what.npos)
        reason += what.substr(tail + 1);
    return reason;
}

/// Reports broken JSON at the byte `offset` of the text.
void reportBroken(Report& report, std::string_view text, std::size_t offset, std::string message)
{
    const std::string_view before = text.substr(0, std::min(offset, text.size()));
    const auto line = static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n')) + 1;
    const std::string_view lineStart = before.substr(before.rfind('\n') + 1);
    const auto startsCharacter = [](char c)
    { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; };
    const auto column = static_cast<std::size_t>(
                            std::count_if(lineStart.begin(), lineStart.end(), startsCharacter)) +
                        1;
    report.brokenJson(line, column, std::move(message));
}

/// How many bytes at the end of the text do not fit: a whole token in the wrong place, else one byte.
/// @param tokenSize of a string or number; the parser keeps no other tokens apart.
std::size_t offendingLength(std::string_view text, const std::string& reason, std::size_t tokenSize)
{
    if (reason.find("unexpected ") == reason.npos)
        return 1;
    if (reason.find("unexpected string") != reason.npos ||
        reason.find("unexpected number") != reason.npos)
        return tokenSize;
    const auto isLetter = [](char c) { return c >= 'a' && c <= 'z'; };
    const auto word = std::find_if_not(text.rbegin(), text.rend(), isLetter);
    return std::max<std::size_t>(1, static_cast<std::size_t>(word - text.rbegin()));
}

/// Takes a byte-order mark off the text.
bool isParseable(std::string& text, Report& report)
{
    if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF"))
    {
        report.brokenJson(1, 1, "expected UTF-8, this looks like UTF-16");
        return false;
    }
    if (text.starts_with("\xEF\xBB\xBF"))
        text.erase(0, 3);
    // The parser takes a NUL for the end of the text.
    const auto nul = text.find('\0');
    if (nul != text.npos)
        reportBroken(report, text, nul, "broken JSON: a NUL character");
    return nul == text.npos;
}

} // namespace

/// Takes the parser's events and builds the document.
class JsonBuilder : public nlohmann::json_sax<nlohmann::json>
{
  public:
    JsonBuilder(JsonDocument& document, std::string_view text, Report& report)
        : _document(document), _text(text), _report(report)
    {
    }

    /// Where a number stands that no double can hold; empty when that did not end the parsing.
    std::string_view overflow() const { return _overflow; }

    bool null() override { return add(Kind::Null); }
    bool boolean(bool value) override
    {
        return add(Kind::Boolean, [&](JsonNode& node) { node.boolean = value; });
    }
    bool number_integer(std::int64_t value) override { return number(static_cast<double>(value)); }
    bool number_unsigned(std::uint64_t value) override
    {
        return number(static_cast<double>(value));
    }
    bool number_float(double value, const std::string&) override { return number(value); }
    bool string(std::string& value) override
    {
        return add(Kind::Text, [&](JsonNode& node)
                   { node.text = _document._texts.emplace_back(std::move(value)); });
    }
    bool binary(nlohmann::json::binary_t&) override { return false; }
    bool start_object(std::size_t) override { return open(Kind::Object); }
    bool start_array(std::size_t) override { return open(Kind::Array); }
    bool key(std::string& value) override
    {
        if (_skipped == 0)
            _key = *_document._keys.insert(std::move(value)).first;
        return true;
    }
    bool end_object() override
    {
        if (_skipped == 0)
            dropRepeatedKeys();
        return close();
    }
    bool end_array() override { return close(); }
    bool parse_error(std::size_t position, const std::string& token,
                     const nlohmann::json::exception& error) override;

  private:
    using Kind = JsonNode::Kind;

    bool number(double value)
    {
        return add(Kind::Number, [&](JsonNode& node) { node.number = value; });
    }
    /// Adds a value, unless it is left out, and lets `fill` set what its kind needs.
    template <class Fill> bool add(Kind kind, Fill fill)
    {
        if (_skipped == 0)
            fill(addNode(kind));
        return true;
    }
    bool add(Kind kind)
    {
        return add(kind, [](const JsonNode&) {});
    }
    JsonNode& addNode(Kind kind);
    bool open(Kind kind);
    bool close();
    std::string pointer(std::size_t depth) const;
    void dropRepeatedKeys();

    JsonDocument& _document;
    std::string_view _text;
    Report& _report;
    std::string_view _overflow;
    /// The arrays and objects around the next value. Each is its parent's last item, so that it stays
    /// where it is while it is open.
    std::vector<JsonNode*> _open;
    std::string_view _key;
    /// How many arrays and objects are open beyond the greatest depth.
    std::size_t _skipped = 0;
    std::vector<std::size_t> _order;
};

JsonNode& JsonBuilder::addNode(Kind kind)
{
    if (_open.empty())
    {
        _document._root.kind = kind;
        return _document._root;
    }
    JsonNode& node = _open.back()->items.emplace_back();
    node.kind = kind;
    if (_open.back()->kind == Kind::Object)
        node.key = _key;
    return node;
}

bool JsonBuilder::open(Kind kind)
{
    if (_skipped > 0)
    {
        ++_skipped;
        return true;
    }
    JsonNode& node = addNode(kind);
    if (_open.size() == JsonDocument::maxDepth)
    {
        _report.error(pointer(_open.size()), "expected at most " +
                                                 std::to_string(JsonDocument::maxDepth) +
                                                 " arrays and objects inside one another");
        _skipped = 1;
        return true;
    }
    node.items.reserve(4); // a colour; saves most of the growing
    _open.push_back(&node);
    return true;
}

bool JsonBuilder::close()
{
    if (_skipped > 0)
        --_skipped;
    else
        _open.pop_back();
    return true;
}

/// Of the last value in the first `depth` open arrays and objects.
std::string JsonBuilder::pointer(std::size_t depth) const
{
    std::string pointer;
    for (std::size_t i = 0; i < depth; ++i)
    {
        const std::vector<JsonNode>& items = _open[i]->items;
        if (_open[i]->kind == Kind::Object)
            appendToPointer(pointer, items.back().key);
        else
            appendToPointer(pointer, items.size() - 1);
    }
    return pointer;
}

/// Reports the keys that the object which ends has more than once; the first member of each stays.
void JsonBuilder::dropRepeatedKeys()
{
    std::vector<JsonNode>& members = _open.back()->items;
    _order.resize(members.size());
    std::iota(_order.begin(), _order.end(), std::size_t{0});
    // Equal keys are one text of the document, so their addresses tell.
    const auto keyOf = [&](std::size_t index) { return members[index].key.data(); };
    std::sort(_order.begin(), _order.end(), [&](std::size_t a, std::size_t b)
              { return keyOf(a) != keyOf(b) ? std::less<>()(keyOf(a), keyOf(b)) : a < b; });
    const auto sameKey = [&](std::size_t a, std::size_t b) { return keyOf(a) == keyOf(b); };
    const auto firstRepeated = std::adjacent_find(_order.begin(), _order.end(), sameKey);
    if (firstRepeated == _order.end())
        return;

    std::set<std::size_t> repeated;
    for (auto at = firstRepeated + 1; at != _order.end(); ++at)
    {
        if (sameKey(*at, *(at - 1)))
            repeated.insert(*at);
    }
    std::set<std::string_view> reported;
    for (const std::size_t index : repeated)
    {
        if (!reported.insert(members[index].key).second)
            continue;
        std::string place = pointer(_open.size() - 1);
        appendToPointer(place, members[index].key);
        _report.error(std::move(place), "expected each key only once in an object");
    }
    std::erase_if(members, [&, index = std::size_t{0}](const JsonNode&) mutable
                  { return repeated.contains(index++); });
}

bool JsonBuilder::parse_error(std::size_t position, const std::string& token,
                              const nlohmann::json::exception& error)
{
    const std::size_t end = std::min(position, _text.size());
    if (error.id == overflowId)
    {
        _overflow = _text.substr(end - std::min(end, token.size()), token.size());
        return false;
    }
    const std::string reason = reasonOf(error.what());
    // The end of the text counts as a byte behind it.
    const std::size_t length =
        position > end ? 0 : offendingLength(_text.substr(0, end), reason, token.size());
    reportBroken(_report, _text, end - std::min(end, length), "broken JSON: " + reason);
    return false;
}

JsonDocument::JsonDocument(std::string& text, Report& report)
{
    if (!isParseable(text, report))
        return;
    for (int replaced = 0; replaced <= maxReplacements; ++replaced)
    {
        Report attempt(report.file());
        JsonBuilder builder(*this, text, attempt);
        _root = {};
        _whole = nlohmann::json::sax_parse(text.data(), text.data() + text.size(), &builder);
        const std::string_view overflow = builder.overflow();
        if (overflow.empty())
        {
            report.append(attempt);
            return;
        }
        const auto start = overflow.data() - text.data();
        if (replaced == maxReplacements)
            reportBroken(report, text, static_cast<std::size_t>(start),
                         "expected numbers within the range of a 32-bit float");
        std::fill_n(text.begin() + start, overflow.size(), ' ');
        std::copy(tooLarge.begin(), tooLarge.end(), text.begin() + start);
    }
}

} // namespace vyr::assetlib
