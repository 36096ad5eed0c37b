#include "Assets.h"

#include <algorithm>
#include <numeric>
#include <string_view>

namespace vyr::assetlib
{

namespace
{

constexpr std::string_view standardLanguage = "eng";

std::optional<std::string_view> findLanguage(const AssetContent& content, std::string_view language)
{
    for (const auto& [tag, text] : content.displayNames)
    {
        if (tag == language)
            return text;
    }
    return std::nullopt;
}

/// The text in the language, else in the standard one, else in any, else the asset's own name.
std::string_view displayName(const AssetContent& content, std::string_view language)
{
    for (const std::string_view tag : {language, standardLanguage})
    {
        if (const auto text = findLanguage(content, tag))
            return *text;
    }
    if (!content.displayNames.empty())
        return content.displayNames.front().second;
    return content.identity ? content.identity->name() : std::string_view();
}

/// Shorter texts first: most comparisons are then of lengths.
bool isBefore(std::string_view a, std::string_view b)
{
    return a.size() != b.size() ? a.size() < b.size() : a < b;
}

} // namespace

platform::IAssetInstance* Property::GetConnectedAsset(std::size_t index) const
{
    return index < _connections.size() ? _connections[index]->retain() : nullptr;
}

PropertyTable::PropertyTable(const std::vector<Property>& properties, Arena& arena)
    : _properties(arena.keep(properties))
{
    std::vector<std::uint32_t> indices(properties.size());
    std::iota(indices.begin(), indices.end(), std::uint32_t{0});
    std::sort(indices.begin(), indices.end(), [&](std::uint32_t a, std::uint32_t b)
              { return isBefore(properties[a].identifier(), properties[b].identifier()); });
    _byName = arena.keep(indices);
}

const platform::IProperty* PropertyTable::FindProperty(const UTF8String& name) const
{
    const std::string_view text = name.str();
    const auto found = std::lower_bound(
        _byName.begin(), _byName.end(), text, [this](std::uint32_t index, std::string_view wanted)
        { return isBefore(_properties[index].identifier(), wanted); });
    if (found == _byName.end() || _properties[*found].identifier() != text)
        return nullptr;
    return &_properties[*found];
}

const platform::IProperty* PropertyTable::GetProperty(std::size_t index) const
{
    return index < _properties.size() ? &_properties[index] : nullptr;
}

void Asset::Release()
{
    Store& store = _store;
    if (_isClone)
        delete this;
    store.release();
}

void Asset::GetDisplayName(UTF8String& name, const char* language) const
{
    name =
        UTF8String(displayName(_content, language ? std::string_view(language) : standardLanguage));
}

platform::IAssetInstance* Asset::Clone() const
{
    auto* clone = new Asset(_store, _content, true);
    _store.retain();
    return clone;
}

Asset* Asset::retain()
{
    _store.retain();
    return this;
}

void Store::release()
{
    if (_references.fetch_sub(1, std::memory_order_acq_rel) == 1)
        delete this;
}

} // namespace vyr::assetlib
