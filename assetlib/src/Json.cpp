#include "Json.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <new>
#include <string>
#include <vector>

#include "Report.h"
#include "base/Text.h"

namespace vyr::assetlib
{

namespace
{

/// How what the parser says begins, and how people are told. The others of its reasons pass as they are.
struct Reason
{
    std::string_view start;
    std::string_view message;
    /// Whether to say what stands there instead.
    bool namesFound = false;
};

constexpr Reason reasons[] = {
    {"unexpected character, expected a valid", "expected a value", true},
    {"unexpected character, expected a string", "expected a key in double quotes", true},
    {"unexpected character, expected a colon", "expected ':' after the key", true},
    {"unexpected character, expected a comma or a closing bracket", "expected ',' or ']'", true},
    {"unexpected character, expected a comma or a closing brace", "expected ',' or '}'", true},
    {"invalid literal", "expected a value", true},
    {"unexpected content", "expected the end of the file", true},
    {"unexpected end", "unexpected end of the file"},
    {"input data is empty", "expected a value"},
    {"input length is 0", "expected a value"},
    {"trailing comma", "expected no comma behind the last item"},
    {"unexpected control character", "expected no control character in a text", true},
    {"invalid UTF-8", "invalid UTF-8 in a text"},
    {"invalid escaped", "invalid escape in a text"},
    {"no low surrogate", "half of a surrogate pair in a text"},
    {"invalid low surrogate", "half of a surrogate pair in a text"},
    {"invalid high surrogate", "half of a surrogate pair in a text"},
};

constexpr bool isWordCharacter(char c)
{
    return base::isAsciiAlphanumeric(c) || c == '_' || c == '.' || c == '-' || c == '+';
}

constexpr bool isContinuation(char c)
{
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

/// The word or character at the start of the text, which is not empty, for a message.
std::string found(std::string_view text)
{
    if (text.starts_with('"'))
        return "a text";
    const auto isPart = isWordCharacter(text.front()) ? isWordCharacter : isContinuation;
    std::size_t length = 1;
    while (length < text.size() && isPart(text[length]))
        ++length;
    return base::inQuotes(base::validUtf8(text.substr(0, length)));
}

/// @param rest of the text, from where it is broken
std::string reasonOf(std::string_view what, std::string_view rest)
{
    const auto* const reason = std::ranges::find_if(reasons, [&](const Reason& candidate)
                                                    { return what.starts_with(candidate.start); });
    if (reason == std::end(reasons))
        return std::string(what);
    std::string message(reason->message);
    return reason->namesFound && !rest.empty() ? message + ", found " + found(rest) : message;
}

/// Takes a byte-order mark off the text.
bool isParseable(Report& report)
{
    std::string& text = report.text();
    if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF"))
    {
        report.errorAtByte(0, "expected UTF-8, this looks like UTF-16");
        return false;
    }
    if (text.starts_with("\xEF\xBB\xBF"))
        text.erase(0, 3);
    const auto nul = text.find('\0');
    if (nul != text.npos)
        report.errorAtByte(nul, "broken JSON: a NUL character");
    return nul == text.npos;
}

/// Looks at all values of a document, which lie in memory one behind the other in the order of the text,
/// a key before its value and an array or object before its content.
class StructureCheck
{
  public:
    explicit StructureCheck(Report& report) : _report(report) {}

    void run(yyjson_doc* document)
    {
        yyjson_val* value = yyjson_doc_get_root(document);
        const yyjson_val* const end = value + yyjson_doc_get_val_count(document);
        while (value != end)
        {
            while (!_ends.empty() && _ends.back() == value)
                _ends.pop_back();
            value = yyjson_is_ctn(value) ? enter(value) : value + 1;
        }
    }

  private:
    /// @return the value to go on with.
    yyjson_val* enter(yyjson_val* container)
    {
        yyjson_val* const end = unsafe_yyjson_get_next(container);
        if (_ends.size() == JsonDocument::maxDepth)
        {
            _report.error(JsonValue(container), "expected at most " +
                                                    std::to_string(JsonDocument::maxDepth) +
                                                    " arrays and objects inside one another");
            unsafe_yyjson_set_len(container, 0);
            return end;
        }
        if (yyjson_is_obj(container) && yyjson_obj_size(container) > 1)
            dropRepeatedKeys(container);
        _ends.push_back(end);
        return container + 1;
    }

    static bool isSame(yyjson_val* a, yyjson_val* b)
    {
        return JsonValue(a).text() == JsonValue(b).text();
    }

    static bool isBefore(yyjson_val* a, yyjson_val* b)
    {
        const int order = JsonValue(a).text().compare(JsonValue(b).text());
        return order != 0 ? order < 0 : a < b;
    }

    /// Most objects have a few keys, which are compared faster than sorted.
    bool areSurelyDifferent() const
    {
        constexpr std::size_t few = 16;
        if (_keys.size() > few)
            return false;
        for (std::size_t i = 1; i < _keys.size(); ++i)
        {
            for (std::size_t k = 0; k < i; ++k)
            {
                if (isSame(_keys[i], _keys[k]))
                    return false;
            }
        }
        return true;
    }

    void dropRepeatedKeys(yyjson_val* object)
    {
        _keys.clear();
        yyjson_obj_iter members = yyjson_obj_iter_with(object);
        while (yyjson_val* const key = yyjson_obj_iter_next(&members))
            _keys.push_back(key);
        if (areSurelyDifferent())
            return;
        std::ranges::sort(_keys, isBefore);
        std::vector<yyjson_val*> repeated;
        for (std::size_t i = 1; i < _keys.size(); ++i)
        {
            if (!isSame(_keys[i], _keys[i - 1]))
                continue;
            if (i == 1 || !isSame(_keys[i], _keys[i - 2]))
                _report.error(JsonValue(_keys[i]), "expected each key only once in an object");
            repeated.push_back(_keys[i]);
        }
        // A key that is null is passed over.
        std::ranges::for_each(repeated, yyjson_set_null);
    }

    Report& _report;
    /// Where the arrays and objects around the value end.
    std::vector<const yyjson_val*> _ends;
    std::vector<yyjson_val*> _keys;
};

} // namespace

double JsonValue::number() const
{
    if (!yyjson_is_raw(_value))
        return yyjson_get_num(_value);
    const auto number =
        base::numberFromText<double>({yyjson_get_raw(_value), yyjson_get_len(_value)});
    return number.value_or(std::numeric_limits<double>::infinity());
}

std::optional<JsonValue> JsonValue::member(std::string_view key) const
{
    if (!yyjson_is_obj(_value))
        return std::nullopt;
    for (const JsonValue member : items())
    {
        if (member.name() == key)
            return member;
    }
    return std::nullopt;
}

JsonItems::Iterator& JsonItems::Iterator::operator++()
{
    do
    {
        _value = unsafe_yyjson_get_next(_value) + (_isObject ? 1 : 0);
        --_left;
    } while (_isObject && _left > 0 && !yyjson_is_str(_value - 1));
    return *this;
}

JsonDocument::JsonDocument(Report& report)
{
    if (!isParseable(report))
        return;
    std::string& text = report.text();
    yyjson_read_err error{};
    // Numbers that no double holds stay texts, so that their reader refuses them at their place.
    _document.reset(
        yyjson_read_opts(text.data(), text.size(), YYJSON_READ_BIGNUM_AS_RAW, nullptr, &error));
    if (error.code == YYJSON_READ_ERROR_MEMORY_ALLOCATION)
        throw std::bad_alloc();
    if (!_document)
    {
        const std::string_view rest =
            std::string_view(text).substr(std::min(error.pos, text.size()));
        report.errorAtByte(error.pos, "broken JSON: " + reasonOf(error.msg, rest));
        return;
    }
    report.setRoot(root());
    StructureCheck(report).run(_document.get());
}

} // namespace vyr::assetlib
