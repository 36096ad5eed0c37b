#include "Report.h"

#include <algorithm>
#include <iterator>
#include <memory>

#include "base/Text.h"

namespace vyr::assetlib
{

namespace
{

std::string formatted(const std::string& file, std::size_t line, std::size_t column,
                      const std::string& pointer, const std::string& message)
{
    std::string text = file;
    if (line != 0)
        text += ':' + std::to_string(line) + ':' + std::to_string(column);
    if (!pointer.empty())
        text += ": " + base::printable(pointer);
    return text + ": " + message;
}

/// A key as a part of a JSON pointer.
std::string escaped(std::string_view key)
{
    std::string result;
    for (const char c : key)
    {
        if (c == '~')
            result += "~0";
        else if (c == '/')
            result += "~1";
        else
            result += c;
    }
    return result;
}

/// Walks over the keys and values of a text that is known to be JSON, each of which is one token.
class TokenWalk
{
  public:
    explicit TokenWalk(std::string_view text) : _text(text) {}

    /// Goes forward to a token; they are counted from 0.
    void goTo(std::size_t token)
    {
        while (_count <= token && _at < _text.size())
            step();
        const base::LineColumn passed =
            base::lineColumnOf(_text.substr(_placed, _start - _placed), _text.size());
        _place.column = passed.column + (passed.line == 1 ? _place.column - 1 : 0);
        _place.line += passed.line - 1;
        _placed = _start;
    }

    base::LineColumn place() const { return _place; }
    /// The JSON pointer of the token; a key has that of its value.
    std::string pointer() const;

  private:
    struct Container
    {
        bool isObject;
        bool isKeyNext;
        std::size_t index = 0;
        /// Where the key of the last member starts.
        std::size_t key = 0;
    };

    void step();
    void startToken();
    std::size_t endOfText(std::size_t start) const;
    std::string keyAt(std::size_t start) const;

    std::string_view _text;
    std::size_t _at = 0;
    std::size_t _count = 0;
    /// Of the last token: where it starts, and how many of the open ones are around it.
    std::size_t _start = 0;
    std::size_t _depth = 0;
    std::vector<Container> _open;
    std::size_t _placed = 0;
    base::LineColumn _place;
};

void TokenWalk::step()
{
    constexpr std::string_view ends = "{}[],:\" \t\n\r";
    const char c = _text[_at];
    const bool opens = c == '{' || c == '[';
    const bool isPlain = ends.find(c) == ends.npos; // of a number, true, false or null
    if (opens || c == '"' || isPlain)
        startToken();
    if (opens)
        _open.push_back({c == '{', c == '{'});
    else if (c == '}' || c == ']')
        _open.pop_back();
    else if (c == ',')
    {
        ++_open.back().index;
        _open.back().isKeyNext = _open.back().isObject;
    }
    if (c == '"')
        _at = endOfText(_at);
    else
        _at = isPlain ? std::min(_text.find_first_of(ends, _at), _text.size()) : _at + 1;
}

void TokenWalk::startToken()
{
    ++_count;
    _start = _at;
    _depth = _open.size();
    if (!_open.empty() && std::exchange(_open.back().isKeyNext, false))
        _open.back().key = _at;
}

/// The byte behind the closing quote of the text that starts there.
std::size_t TokenWalk::endOfText(std::size_t start) const
{
    std::size_t at = start + 1;
    while (_text[at] != '"')
        at += _text[at] == '\\' ? 2U : 1U;
    return at + 1;
}

std::string TokenWalk::keyAt(std::size_t start) const
{
    // A key alone is a JSON text too.
    const std::unique_ptr<yyjson_doc, decltype(&yyjson_doc_free)> document(
        yyjson_read(_text.data() + start, endOfText(start) - start, YYJSON_READ_NOFLAG),
        &yyjson_doc_free);
    return std::string(JsonValue(yyjson_doc_get_root(document.get())).text());
}

std::string TokenWalk::pointer() const
{
    std::string pointer;
    for (std::size_t i = 0; i < _depth; ++i)
    {
        const Container& container = _open[i];
        pointer += '/';
        pointer +=
            container.isObject ? escaped(keyAt(container.key)) : std::to_string(container.index);
    }
    return pointer;
}

} // namespace

void Report::fileError(std::string message)
{
    _fileErrors.push_back({_file, 0, 0, {}, std::move(message)});
}

void Report::errorAtByte(std::size_t offset, std::string message)
{
    const base::LineColumn place = base::lineColumnOf(_text, offset);
    _fileErrors.push_back({_file, place.line, place.column, {}, std::move(message)});
}

void Report::error(Token token, std::string message)
{
    _messages.push_back({token, true, {_file, 0, 0, {}, {}, {}, std::move(message)}});
}

void Report::warning(JsonValue at, std::string_view asset, std::string_view property,
                     std::string message)
{
    _messages.push_back(
        {token(at),
         false,
         {_file, 0, 0, {}, std::string(asset), std::string(property), std::move(message)}});
}

void Report::take(Report&& part)
{
    std::ranges::move(part._fileErrors, std::back_inserter(_fileErrors));
    std::ranges::move(part._messages, std::back_inserter(_messages));
}

void Report::addTo(LoadResult& result)
{
    std::ranges::move(_fileErrors, std::back_inserter(result.errors));
    std::ranges::stable_sort(_messages, {}, &Message::token);
    TokenWalk walk(_text);
    for (auto& [token, isError, message] : _messages)
    {
        walk.goTo(token);
        message.line = walk.place().line;
        message.column = walk.place().column;
        message.pointer = walk.pointer();
        if (isError)
            result.errors.push_back({_file, message.line, message.column,
                                     std::move(message.pointer), std::move(message.message)});
        else
            result.warnings.push_back(std::move(message));
    }
}

std::string LoadError::format() const
{
    return formatted(file, line, column, pointer, message);
}

std::string LoadWarning::format() const
{
    return formatted(file, line, column, pointer, message);
}

} // namespace vyr::assetlib
