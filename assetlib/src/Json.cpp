#include "Json.h"

#include <algorithm>
#include <cstdint>

#include <nlohmann/json.hpp>
#include <simdjson.h>

#include "JsonBuilder.h"

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

/// Takes what nlohmann's parser finds.
class Sax : public nlohmann::json_sax<nlohmann::json>
{
  public:
    Sax(std::string_view text, JsonBuilder& builder, Report& report)
        : _text(text), _builder(builder), _report(report)
    {
    }

    /// Where a number stands that no double can hold; empty when that did not end the parsing.
    std::string_view overflow() const { return _overflow; }

    bool null() override { return add({}); }
    bool boolean(bool value) override { return add(value); }
    bool number_integer(std::int64_t value) override { return add(static_cast<double>(value)); }
    bool number_unsigned(std::uint64_t value) override { return add(static_cast<double>(value)); }
    bool number_float(double value, const std::string&) override { return add(value); }
    bool string(std::string& value) override
    {
        _builder.addText(value);
        return true;
    }
    bool binary(nlohmann::json::binary_t&) override { return false; }
    bool start_object(std::size_t) override { return take(&JsonBuilder::openObject); }
    bool end_object() override { return take(&JsonBuilder::closeObject); }
    bool start_array(std::size_t) override { return take(&JsonBuilder::openArray); }
    bool end_array() override { return take(&JsonBuilder::closeArray); }
    bool key(std::string& value) override
    {
        _builder.addKey(value);
        return true;
    }
    bool parse_error(std::size_t position, const std::string& token,
                     const nlohmann::json::exception& error) override;

  private:
    bool take(void (JsonBuilder::*step)())
    {
        (_builder.*step)();
        return true;
    }
    bool add(const JsonNode::Content& content)
    {
        _builder.add(content);
        return true;
    }

    std::string_view _text;
    JsonBuilder& _builder;
    Report& _report;
    std::string_view _overflow;
};

bool Sax::parse_error(std::size_t position, const std::string& token,
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

/// Hands an element and all in it to the builder. simdjson bounds the recursion.
void build(const simdjson::dom::element& element, JsonBuilder& builder)
{
    using Type = simdjson::dom::element_type;
    switch (element.type())
    {
    case Type::ARRAY:
        builder.openArray();
        for (const simdjson::dom::element item : simdjson::dom::array(element))
            build(item, builder);
        return builder.closeArray();
    case Type::OBJECT:
        builder.openObject();
        for (const auto& [key, value] : simdjson::dom::object(element))
        {
            builder.addKey(key);
            build(value, builder);
        }
        return builder.closeObject();
    case Type::STRING:
        return builder.addText(std::string_view(element));
    case Type::BOOL:
        return builder.add(bool(element));
    case Type::NULL_VALUE:
        return builder.add({});
    case Type::INT64:
    case Type::UINT64:
    case Type::DOUBLE:
        return builder.add(double(element));
    }
}

/// Parses by simdjson, ten times as fast as by nlohmann's parser, which says better where and why a text
/// is broken.
/// @return whether the text is whole and in its bounds.
bool parseFast(std::string& text, JsonBuilder& builder)
{
    static_assert(JsonDocument::roomBehind >= simdjson::SIMDJSON_PADDING);
    text.reserve(text.size() + JsonDocument::roomBehind);
    simdjson::dom::parser parser;
    simdjson::dom::element root;
    if (parser.parse(text.data(), text.size(), false).get(root) != simdjson::SUCCESS)
        return false;
    build(root, builder);
    return true;
}

} // namespace

JsonDocument::JsonDocument(std::string& text, Arena& texts, Report& report)
{
    if (!isParseable(text, report))
        return;
    JsonBuilder builder(_nodes, texts, report);
    _whole = parseFast(text, builder);
    if (_whole)
        _root = builder.root();
    else
        parseWithReasons(text, texts, report);
}

void JsonDocument::parseWithReasons(std::string& text, Arena& texts, Report& report)
{
    for (int replaced = 0; replaced <= maxReplacements; ++replaced)
    {
        Report attempt(report.file());
        JsonBuilder builder(_nodes, texts, attempt);
        Sax sax(text, builder, attempt);
        _whole = nlohmann::json::sax_parse(text.data(), text.data() + text.size(), &sax);
        if (_whole)
            _root = builder.root();
        const std::string_view overflow = sax.overflow();
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
