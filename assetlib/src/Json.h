#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "Arena.h"
#include "Report.h"

namespace vyr::assetlib
{

class JsonNode;
using JsonItems = std::span<const JsonNode>;

struct JsonArray
{
    JsonItems items;
};

/// The members in the order of the file, each key once.
struct JsonObject
{
    JsonItems items;
};

/// One value of a JSON document. There are many, so that it is kept small.
class JsonNode
{
  public:
    using Content =
        std::variant<std::monostate, bool, double, std::string_view, JsonArray, JsonObject>;

    /// In the order of what a node may hold.
    enum class Kind
    {
        Null,
        Boolean,
        Number,
        Text,
        Array,
        Object,
    };

    explicit JsonNode(std::string_view key = {}, const Content& content = {})
        : _content(content), _key(key)
    {
    }

    Kind kind() const { return static_cast<Kind>(_content.index()); }
    /// Where the node is a member of an object.
    std::string_view key() const { return _key; }

    /// These three are for a node of that kind.
    bool boolean() const { return std::get<bool>(_content); }
    double number() const { return std::get<double>(_content); }
    std::string_view text() const { return std::get<std::string_view>(_content); }
    /// Of an array or an object; none of any other node.
    JsonItems items() const
    {
        if (const auto* array = std::get_if<JsonArray>(&_content))
            return array->items;
        const auto* object = std::get_if<JsonObject>(&_content);
        return object ? object->items : JsonItems();
    }

    void setContent(const Content& content) { _content = content; }

  private:
    Content _content;
    std::string_view _key;
};

/// A JSON text in memory.
class JsonDocument
{
  public:
    /// Arrays and objects inside one another, the outermost counted.
    static constexpr std::size_t maxDepth = 64;
    /// A text with so many bytes of room behind its end is not moved to make some.
    static constexpr std::size_t roomBehind = 64;

    /// Parses the text and reports broken JSON (with line and column), keys that an object has
    /// twice, and nesting deeper than maxDepth, whose content is left out.
    /// @param text changed where it holds numbers that no double can hold: they become a number that
    ///        no float can hold, so that its reader refuses it at its place.
    /// @param texts gets the texts and keys, which may outlive the document; equal keys are one text.
    JsonDocument(std::string& text, Arena& texts, Report& report);

    /// False when the JSON is broken; the root then means nothing.
    bool isWhole() const { return _whole; }
    const JsonNode& root() const { return _root; }

  private:
    void parseWithReasons(std::string& text, Arena& texts, Report& report);

    JsonNode _root;
    bool _whole = false;
    Arena _nodes;
};

} // namespace vyr::assetlib
