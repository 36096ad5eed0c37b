#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "Json.h"

namespace vyr::assetlib
{

/// Takes the values of a JSON text one after the other, as parsers find them, and builds the nodes.
/// Reports keys that an object has twice, and nesting deeper than JsonDocument::maxDepth, whose
/// content is left out.
class JsonBuilder
{
  public:
    /// @param texts gets the texts and keys; equal keys are one text.
    JsonBuilder(Arena& nodes, Arena& texts, Report& report)
        : _nodes(nodes), _texts(texts), _report(report)
    {
    }

    /// A value that is no text, array or object.
    void add(const JsonNode::Content& content);
    void addText(std::string_view text);
    /// The key of the next value.
    void addKey(std::string_view key);
    void openArray() { open(JsonArray()); }
    void closeArray() { close<JsonArray>(); }
    void openObject() { open(JsonObject()); }
    void closeObject();

    /// To be called when a whole text has been taken.
    const JsonNode& root() const { return _pending.front(); }

  private:
    void open(const JsonNode::Content& content);
    template <class Content> void close();
    std::string pointer(std::size_t depth) const;
    void dropRepeatedKeys();

    Arena& _nodes;
    Arena& _texts;
    Report& _report;
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

} // namespace vyr::assetlib
