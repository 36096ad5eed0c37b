#include "definitions/Checks.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <optional>
#include <string_view>
#include <unordered_set>
#include <utility>

#include <MaterialXFormat/XmlIo.h>
#include <fmt/format.h>

#include "base/Paths.h"
#include "base/Text.h"

namespace vyr::MaterialTranslation::definitions
{

namespace fs = std::filesystem;
namespace mx = MaterialX;

namespace
{

std::string contentOf(const fs::path& file)
{
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (!fs::exists(status))
        throw UnreadableDocument("there is no such file");
    if (!fs::is_regular_file(status))
        throw UnreadableDocument(fs::is_directory(status) ? "it is a folder"
                                                          : "it is no ordinary file");
    std::ifstream stream(file, std::ios::binary);
    std::string content{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    if (!stream)
        throw UnreadableDocument("it cannot be read");
    return content;
}

std::string lineAndColumn(std::string_view content, std::size_t offset)
{
    const auto [line, column] = base::lineColumnOf(content, offset);
    return fmt::format("line {}, column {}", line, column);
}

/// MaterialX says "XML parse error (<reason> at character <offset>)".
std::string parseFailure(std::string_view text, std::string_view content)
{
    constexpr std::string_view opening = "XML parse error (";
    constexpr std::string_view marker = " at character ";
    const std::size_t at = text.rfind(marker);
    if (!text.starts_with(opening) || at == text.npos)
        return std::string(text);
    const std::size_t number = at + marker.size();
    const auto offset =
        base::numberFromText<std::size_t>(text.substr(number, text.rfind(')') - number));
    return fmt::format("{}: {}", lineAndColumn(content, offset.value_or(0)),
                       text.substr(opening.size(), at - opening.size()));
}

/// The value of an attribute, given in its quotes, as MaterialX reads it.
std::string attributeValue(std::string_view quoted)
{
    if (quoted.find('&') == quoted.npos)
        return std::string(quoted.substr(1, quoted.size() - 2));
    const mx::DocumentPtr document = mx::createDocument();
    mx::readFromXmlString(document, fmt::format("<materialx value={} />", quoted));
    return document->getAttribute("value");
}

/// The start and end tags of a text that is known to be XML.
class Tags
{
  public:
    explicit Tags(std::string_view text) : _text(text)
    {
        constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
        _end = text.starts_with(byteOrderMark) ? byteOrderMark.size() : 0;
    }

    /// Goes to the next tag.
    bool next()
    {
        static constexpr std::pair<std::string_view, std::string_view> others[] = {
            {"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}};
        _characters.reset();
        goToMarkup(_end);
        while (_begin != _text.npos)
        {
            const auto* other = std::ranges::find_if(
                others, [&](const auto& o) { return _text.substr(_begin).starts_with(o.first); });
            if (other != std::end(others))
                goToMarkup(behind(other->second, _begin + other->first.size()));
            else if (_text.substr(_begin).starts_with("<!"))
                goToMarkup(declarationEnd(_begin));
            else
                break;
        }
        if (_begin == _text.npos)
            return false;
        char quote = 0;
        for (_end = _begin; _end < _text.size() && (quote != 0 || _text[_end] != '>'); ++_end)
            if (const char c = _text[_end]; quote == c)
                quote = 0;
            else if (quote == 0 && (c == '"' || c == '\''))
                quote = c;
        ++_end;
        return true;
    }

    std::size_t offset() const { return _begin; }
    bool closes() const { return _text[_begin + 1] == '/'; }
    bool closesItself() const { return _text[_end - 2] == '/'; }
    /// Where there are characters between this tag and the one before it, or behind the last one.
    std::optional<std::size_t> characters() const { return _characters; }

    /// The value of the attribute "name"; empty without one.
    std::string name() const
    {
        std::size_t at = _begin;
        while ((at = _text.find_first_of("\"'", at)) < _end)
        {
            const std::size_t close = _text.find(_text[at], at + 1);
            std::string_view before = _text.substr(_begin, at - _begin);
            const auto trim = [&](std::string_view what)
            { before = before.substr(0, before.find_last_not_of(what) + 1); };
            trim(" \t\r\n");
            trim("=");
            trim(" \t\r\n");
            if (before.ends_with("name") && before.find_last_of(" \t\r\n") + 5 == before.size())
                return attributeValue(_text.substr(at, close - at + 1));
            at = close + 1;
        }
        return {};
    }

  private:
    std::size_t behind(std::string_view what, std::size_t from) const
    {
        const std::size_t at = _text.find(what, from);
        return at == _text.npos ? at : at + what.size();
    }

    /// Goes to the next tag, comment or declaration.
    void goToMarkup(std::size_t from)
    {
        _begin = _text.find('<', from);
        const std::size_t at = _text.find_first_not_of(" \t\r\n", from);
        if (at != _begin && !_characters)
            _characters = at;
    }

    /// The end of a document type, which has declarations, comments and texts within.
    std::size_t declarationEnd(std::size_t at) const
    {
        int open = 0;
        while (at < _text.size())
        {
            const char c = _text[at];
            if (_text.substr(at).starts_with("<!--"))
                at = behind("-->", at);
            else if (c == '"' || c == '\'')
                at = behind(_text.substr(at, 1), at + 1);
            else if (++at; c == '<')
                ++open;
            else if (c == '>' && --open == 0)
                break;
        }
        return at;
    }

    std::string_view _text;
    std::size_t _begin = 0;
    std::size_t _end = 0;
    std::optional<std::size_t> _characters;
};

/// Looks for what MaterialX leaves out without a word: a second element of one name, of which the first hundred are
/// told, and everything outside of the root element.
void checkTags(std::string_view content, const std::string& file,
               std::vector<ValidationMessage>& messages)
{
    constexpr std::size_t mostMessages = 100;
    std::vector<std::unordered_set<std::string>> open(1);
    std::size_t found = 0;
    bool hasRoot = false;
    Tags tags(content);
    for (bool more = true; more;)
    {
        more = tags.next();
        const bool isOutside = open.size() == 1;
        if (isOutside && tags.characters())
            throw UnreadableDocument(lineAndColumn(content, *tags.characters()) +
                                     ": text outside of the root element");
        if (!more)
            break;
        if (tags.closes())
        {
            open.pop_back();
            continue;
        }
        if (isOutside && std::exchange(hasRoot, true))
            throw UnreadableDocument(lineAndColumn(content, tags.offset()) +
                                     ": a second root element");
        const std::string name = tags.name();
        if (!name.empty() && !open.back().insert(name).second && ++found <= mostMessages)
            messages.push_back({"", ValidationCode::NameTwice,
                                fmt::format("{}{}: a second element \"{}\"", file,
                                            lineAndColumn(content, tags.offset()), name)});
        if (!tags.closesItself())
            open.emplace_back();
    }
}

/// Reads a file and what it includes.
class Reader
{
  public:
    explicit Reader(std::vector<ValidationMessage>& messages) : _messages(messages)
    {
        _options.readXIncludeFunction =
            [this](const mx::DocumentPtr& document, const mx::FilePath& file,
                   const mx::FileSearchPath& path, const mx::XmlReadOptions* options)
        {
            // Files that include others twice are read twice as often with each level.
            constexpr int mostIncludes = 1000;
            const std::string found = path.find(file).asString();
            if (++_includes > mostIncludes)
                throw UnreadableDocument(
                    fmt::format("more than {} files are included", mostIncludes));
            try
            {
                read(document, found, found + ": ", *options);
            }
            catch (const UnreadableDocument& error)
            {
                throw UnreadableDocument(found + ": " + error.what());
            }
        };
    }

    void read(const mx::DocumentPtr& document, const std::string& name)
    {
        read(document, name, "", _options);
    }

  private:
    void read(const mx::DocumentPtr& document, const std::string& name, const std::string& prefix,
              const mx::XmlReadOptions& options)
    {
        const std::string content = contentOf(base::pathFromUtf8(name));
        // MaterialX takes the content as a C string.
        if (const std::size_t zero = content.find('\0'); zero != std::string::npos)
            throw UnreadableDocument(lineAndColumn(content, zero) + ": a zero byte");
        document->setSourceUri(name);
        const mx::FileSearchPath folder(mx::FilePath(name).getParentPath().asString());
        try
        {
            mx::readFromXmlString(document, content, folder, &options);
        }
        catch (const UnreadableDocument&)
        {
            throw;
        }
        catch (const std::exception& error)
        {
            throw UnreadableDocument(parseFailure(error.what(), content));
        }
        checkTags(content, prefix, _messages);
    }

    std::vector<ValidationMessage>& _messages;
    mx::XmlReadOptions _options;
    int _includes = 0;
};

} // namespace

mx::DocumentPtr readDocument(const fs::path& file, std::vector<ValidationMessage>& messages)
{
    mx::DocumentPtr document = mx::createDocument();
    Reader(messages).read(document, base::utf8FromPath(file));
    return document;
}

} // namespace vyr::MaterialTranslation::definitions
