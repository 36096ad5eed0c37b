#include "JsonBuilder.h"

#include <algorithm>
#include <functional>
#include <numeric>
#include <set>
#include <utility>

namespace vyr::assetlib
{

void JsonBuilder::add(const JsonNode::Content& content)
{
    if (_skipped == 0)
        _pending.emplace_back(std::exchange(_key, {}), content);
}

void JsonBuilder::addText(std::string_view text)
{
    if (_skipped == 0)
        add(_texts.keepText(text));
}

void JsonBuilder::addKey(std::string_view key)
{
    if (_skipped > 0)
        return;
    const auto known = _keys.find(key);
    _key = known != _keys.end() ? *known : *_keys.insert(_texts.keepText(key)).first;
}

void JsonBuilder::open(const JsonNode::Content& content)
{
    if (_skipped > 0)
    {
        ++_skipped;
        return;
    }
    add(content);
    if (_open.size() == JsonDocument::maxDepth)
    {
        _report.error(pointer(_open.size()), "expected at most " +
                                                 std::to_string(JsonDocument::maxDepth) +
                                                 " arrays and objects inside one another");
        _skipped = 1;
        return;
    }
    _open.push_back(_pending.size());
}

void JsonBuilder::closeObject()
{
    if (_skipped == 0)
        dropRepeatedKeys();
    close<JsonObject>();
}

template <class Content> void JsonBuilder::close()
{
    if (_skipped > 0)
    {
        --_skipped;
        return;
    }
    const auto first = _pending.begin() + static_cast<std::ptrdiff_t>(_open.back());
    const JsonItems items = _nodes.keep(std::span(first, _pending.end()));
    _pending.erase(first, _pending.end());
    _pending.back().setContent(Content{items});
    _open.pop_back();
}

template void JsonBuilder::close<JsonArray>();

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

} // namespace vyr::assetlib
