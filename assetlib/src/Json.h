#pragma once

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "Report.h"

namespace vyr::assetlib
{

/// One value of a JSON document. Texts and keys belong to the document.
struct JsonNode
{
    enum class Kind
    {
        Null,
        Boolean,
        Number,
        Text,
        Array,
        Object,
    };

    Kind kind = Kind::Null;
    bool boolean = false;
    double number = 0.0;
    std::string_view text;
    /// Where the node is a member of an object.
    std::string_view key;
    /// Items of an array, members of an object in the order of the file, each key once.
    std::vector<JsonNode> items;
};

/// A JSON text in memory. Not movable: the nodes point into it.
class JsonDocument
{
  public:
    /// Arrays and objects inside one another, the outermost counted.
    static constexpr std::size_t maxDepth = 64;

    /// Parses the text and reports broken JSON (with line and column), keys that an object has
    /// twice, and nesting deeper than maxDepth, whose content is left out.
    /// @param text changed where it holds numbers that no double can hold: they become a number that
    ///        no float can hold, so that its reader refuses it at its place.
    JsonDocument(std::string& text, Report& report);
    JsonDocument(const JsonDocument&) = delete;
    JsonDocument& operator=(const JsonDocument&) = delete;

    /// False when the JSON is broken; the root then means nothing.
    bool isWhole() const { return _whole; }
    const JsonNode& root() const { return _root; }

  private:
    friend class JsonBuilder;

    JsonNode _root;
    bool _whole = false;
    std::unordered_set<std::string> _keys;
    std::deque<std::string> _texts;
};

} // namespace vyr::assetlib
