#include "Json.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <numeric>
#include <set>
#include <unordered_set>
#include <utility>
#include <vector>

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

/// Takes the parser's events and builds the document.
class JsonBuilder : public nlohmann::json_sax<nlohmann::json>
{
  public:
    JsonBuilder(std::string_view text, Arena& nodes, Arena& texts, Report& report)
        : _text(text), _nodes(nodes), _texts(texts), _report(report)
    {
    }

    /// To be called when the text has been parsed to its end.
    const JsonNode& root() const { return _pending.front(); }

    /// Where a number stands that no double can hold; empty when that did not end the parsing.
    std::string_view overflow() const { return _overflow; }

    bool null() override { return add({}); }
    bool boolean(bool value) override { return add(value); }
    bool number_integer(std::int64_t value) override { return add(static_cast<double>(value)); }
    bool number_unsigned(std::uint64_t value) override { return add(static_cast<double>(value)); }
    bool number_float(double value, const std::string&) override { return add(value); }
    bool string(std::string& value) override { return _skipped > 0 || add(_texts.keepText(value)); }
    bool binary(nlohmann::json::binary_t&) override { return false; }
    bool start_object(std::size_t) override { return open(JsonObject()); }
    bool start_array(std::size_t) override { return open(JsonArray()); }
    bool key(std::string& value) override
    {
        if (_skipped == 0)
            _key = keep(value);
        return true;
    }
    bool end_object() override
    {
        if (_skipped == 0)
            dropRepeatedKeys();
        return close<JsonObject>();
    }
    bool end_array() override { return close<JsonArray>(); }
    bool parse_error(std::size_t position, const std::string& token,
                     const nlohmann::json::exception& error) override;

  private:
    /// Adds a value, unless it is left out.
    bool add(const JsonNode::Content& content)
    {
        if (_skipped == 0)
            _pending.emplace_back(std::exchange(_key, {}), content);
        return true;
    }
    std::string_view keep(const std::string& key);
    bool open(const JsonNode::Content& content);
    template <class Content> bool close();
    std::string pointer(std::size_t depth) const;
    void dropRepeatedKeys();

    std::string_view _text;
    Arena& _nodes;
    Arena& _texts;
    Report& _report;
    std::string_view _overflow;
    /// The nodes that are in no finished array or object yet.
    std::vector<JsonNode> _pending;
    /// Of each array and object around the next value, where its items begin among those nodes. It stands
    /// before them, the last item of its parent.
    std::vector<std::size_t> _open;
    std::string_view _key;
    std::unordered_set<std::string_view> _keys;
    /// How many arrays and objects are open beyond the greatest depth.
    std::size_t _skipped = 0;
    std::vector<std::size_t> _order;
};

std::string_view JsonBuilder::keep(const std::string& key)
{
    if (const auto known = _keys.find(key); known != _keys.end())
        return *known;
    return *_keys.insert(_texts.keepText(key)).first;
}

bool JsonBuilder::open(const JsonNode::Content& content)
{
    if (_skipped > 0)
    {
        ++_skipped;
        return true;
    }
    add(content);
    if (_open.size() == JsonDocument::maxDepth)
    {
        _report.error(pointer(_open.size()), "expected at most " +
                                                 std::to_string(JsonDocument::maxDepth) +
                                                 " arrays and objects inside one another");
        _skipped = 1;
        return true;
    }
    _open.push_back(_pending.size());
    return true;
}

template <class Content> bool JsonBuilder::close()
{
    if (_skipped > 0)
    {
        --_skipped;
        return true;
    }
    const auto first = _pending.begin() + static_cast<std::ptrdiff_t>(_open.back());
    const JsonItems items = _nodes.keep(std::span(first, _pending.end()));
    _pending.erase(first, _pending.end());
    _pending.back().setContent(Content{items});
    _open.pop_back();
    return true;
}

/// Of the last value in the first `depth` open arrays and objects.
std::string JsonBuilder::pointer(std::size_t depth) const
{
    std::string pointer;
    for (std::size_t i = 0; i < depth; ++i)
    {
        // What is open further in is the last item here.
        const std::size_t end = i + 1 < _open.size() ? _open[i + 1] : _pending.size();
        if (_pending[_open[i] - 1].kind() == JsonNode::Kind::Object)
            appendToPointer(pointer, _pending[end - 1].key());
        else
            appendToPointer(pointer, end - 1 - _open[i]);
    }
    return pointer;
}

/// Reports the keys that the object which ends has more than once; the first member of each stays.
void JsonBuilder::dropRepeatedKeys()
{
    _order.resize(_pending.size() - _open.back());
    std::iota(_order.begin(), _order.end(), _open.back());
    // Equal keys are one text, so their addresses tell.
    const auto keyOf = [&](std::size_t index) { return _pending[index].key().data(); };
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
        if (!reported.insert(_pending[index].key()).second)
            continue;
        std::string place = pointer(_open.size() - 1);
        appendToPointer(place, _pending[index].key());
        _report.error(std::move(place), "expected each key only once in an object");
    }
    const auto first = _pending.begin() + static_cast<std::ptrdiff_t>(_open.back());
    const auto isRepeated = [&](const JsonNode& node)
    { return repeated.contains(static_cast<std::size_t>(&node - _pending.data())); };
    _pending.erase(std::remove_if(first, _pending.end(), isRepeated), _pending.end());
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

} // namespace

JsonDocument::JsonDocument(std::string& text, Arena& texts, Report& report)
{
    if (!isParseable(text, report))
        return;
    for (int replaced = 0; replaced <= maxReplacements; ++replaced)
    {
        Report attempt(report.file());
        JsonBuilder builder(text, _nodes, texts, attempt);
        _whole = nlohmann::json::sax_parse(text.data(), text.data() + text.size(), &builder);
        const std::string_view overflow = builder.overflow();
        if (_whole)
            _root = builder.root();
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
