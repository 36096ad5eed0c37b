#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <vyr/assetlib/Library.h>

#include "Json.h"

namespace vyr::assetlib
{

/// A file's text and what is wrong with it. Places in the text are worked out at the end, and only when
/// there is something to say.
class Report
{
  public:
    /// The number of a key or value in the text: tells a place, also when the document is gone.
    using Token = std::size_t;

    explicit Report(std::string file) : _file(std::move(file)) {}

    const std::string& file() const { return _file; }
    /// Empty until the file is read; unchanged from the time when it is parsed.
    std::string& text() { return _text; }
    /// The first value of the text.
    void setRoot(JsonValue root) { _root = root; }
    Token token(JsonValue value) const { return value.tokensAfter(_root); }

    /// On the file as a whole.
    void fileError(std::string message);
    /// Where the text is no JSON.
    void errorAtByte(std::size_t offset, std::string message);
    void error(Token token, std::string message);
    void error(JsonValue at, std::string message) { error(token(at), std::move(message)); }
    /// @param asset its id, or the name of an overlay
    void warning(JsonValue at, std::string_view asset, std::string_view property,
                 std::string message);

    /// An empty report on the same text, for another thread.
    Report forPart() const
    {
        Report part(_file);
        part._root = _root;
        return part;
    }
    /// Adds the messages of another report on this file.
    void take(Report&& part);

    /// Moves the messages to the result, in the order of their places.
    void addTo(LoadResult& result);

  private:
    struct Message
    {
        Token token;
        bool isError;
        /// Errors leave the asset and the property empty.
        LoadWarning content;
    };

    std::string _file;
    std::string _text;
    JsonValue _root{nullptr};
    std::vector<LoadError> _fileErrors;
    std::vector<Message> _messages;
};

} // namespace vyr::assetlib
