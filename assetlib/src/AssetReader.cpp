#include "AssetReader.h"

#include <algorithm>
#include <array>
#include <optional>

#include <kelvor/platform/assets/PropertyType.h>

#include "Fields.h"
#include "PropertyReader.h"
#include "Words.h"

namespace vyr::assetlib
{

namespace
{

using Kind = JsonNode::Kind;

constexpr std::string_view versionProperty = "VersionGUID";
constexpr std::string_view hiddenProperty = "Hidden";

std::optional<std::string_view> readId(const JsonNode& node, const Place& place, Report& report)
{
    const auto id = readText(node, place, report);
    if (id && id->empty())
    {
        report.error(place, "expected an id that is not empty");
        return std::nullopt;
    }
    return id;
}

using DisplayNames = std::vector<DisplayName>;

/// One text for "eng", or an object from language tag to text.
std::optional<DisplayNames> readDisplayNames(const JsonNode& node, const Place& place,
                                             Report& report)
{
    DisplayNames names;
    if (node.kind() == Kind::Text)
        names.emplace_back("eng", node.text());
    else if (node.kind() != Kind::Object)
        report.error(place, "expected a text, or an object from language to text");
    else
    {
        for (const JsonNode& member : node.items())
        {
            if (const auto text = readText(member, place.key(member.key()), report))
                names.emplace_back(member.key(), *text);
        }
    }
    return names;
}

/// Reads an asset and, through their connections, the assets inside it. The greatest depth of a
/// document bounds the recursion.
class AssetReader
{
  public:
    /// @param owner for messages: the id of the asset around an inline one.
    AssetReader(const JsonNode& node, const Place& place, FileScope& file, std::string_view owner)
        : _place(place), _file(file), _object(node, place, file.report), _owner(owner)
    {
    }

    Asset* readTopLevel();
    Asset* readInline();

  private:
    using Properties = std::vector<Property>;

    void read();
    void registerId();
    Properties readProperties(std::string_view key, bool isGeneric);
    void readConnections(const JsonNode& node, const Place& place, Property& property);
    void readConnection(const JsonNode& node, const Place& place, Asset*& slot);

    const Place& _place;
    FileScope& _file;
    ObjectReader _object;
    std::string_view _owner;
    Asset* _asset = nullptr;
};

Asset* AssetReader::readTopLevel()
{
    if (!_object.isObject())
        return nullptr;
    _asset = &_file.loading.store.add();
    std::string_view& id = _asset->content().id;
    _object.readRequired("id", id, readId);
    _owner = id;
    if (!id.empty())
        registerId();
    _file.loading.assets.push_back(_asset);
    read();
    return _asset;
}

void AssetReader::registerId()
{
    const std::string_view id = _asset->content().id;
    const auto [origin, isNew] = _file.loading.origins.try_emplace(id);
    if (isNew)
        origin->second = {_asset, _file.report.file(), _place.pointer()};
    else
        _file.report.error(_object.at("id"), "expected an id of its own, " + inQuotes(id) +
                                                 " belongs to " + std::string(origin->second.file) +
                                                 ": " + origin->second.pointer);
}

Asset* AssetReader::readInline()
{
    if (!_object.isObject())
        return nullptr;
    _asset = &_file.loading.store.add();
    if (_object.find("id"))
        _file.report.error(_object.at("id"), "expected no id in an inline asset");
    read();
    return _asset;
}

void AssetReader::read()
{
    AssetContent& content = _asset->content();
    Arena& arena = _file.arena();
    std::string_view schema;
    std::optional<std::string_view> name;
    DisplayNames displayNames;
    _object.readRequired("schema", schema, readText);
    _object.read("name", name, readText);
    _object.read("displayName", displayNames, readDisplayNames);
    _object.read("description", content.description, readText);
    content.definition = Definition(schema);
    content.displayNames = arena.keep(displayNames);
    if (name)
        content.identity.emplace(*name);

    Properties properties = readProperties("properties", false);
    const JsonNode* written = _object.find("properties");
    const auto isWritten = [&](std::string_view key)
    {
        return written && std::any_of(written->items().begin(), written->items().end(),
                                      [&](const JsonNode& item) { return item.key() == key; });
    };
    if (!isWritten(versionProperty))
        properties.emplace_back(versionProperty, platform::ePropertyType_Text,
                                arena.make<StringValue>(schema));
    if (!isWritten(hiddenProperty))
        properties.emplace_back(hiddenProperty, platform::ePropertyType_Boolean,
                                arena.make<BooleanValue>(false));
    content.properties = PropertyTable(properties, arena);
    if (_object.find("genericProperties"))
        content.genericProperties.emplace(readProperties("genericProperties", true), arena);
    _object.reportUnknownKeys();
}

AssetReader::Properties AssetReader::readProperties(std::string_view key, bool isGeneric)
{
    Properties properties;
    const JsonNode* table = _object.find(key);
    if (!table)
        return properties;
    const Place place = _object.at(key);
    if (table->kind() != Kind::Object)
    {
        _file.report.error(place, "expected an object from property name to property");
        return properties;
    }
    properties.reserve(table->items().size() + 2);
    for (const JsonNode& member : table->items())
    {
        const bool isStandard = member.key() == versionProperty || member.key() == hiddenProperty;
        if (member.kind() == Kind::Null && isStandard && !isGeneric)
            continue;
        const Place at = place.key(member.key());
        auto parts = readProperty(member, at, {_file, _owner});
        if (!parts)
            continue;
        if (parts->connected)
            readConnections(*parts->connected, at.key("connected"), parts->property);
        properties.push_back(parts->property);
    }
    return properties;
}

void AssetReader::readConnections(const JsonNode& node, const Place& place, Property& property)
{
    const bool isList = node.kind() == Kind::Array;
    const std::span<Asset*> slots =
        _file.arena().keep(std::vector<Asset*>(isList ? node.items().size() : 1));
    property.setConnections(slots);
    if (!isList)
        return readConnection(node, place, slots.front());
    for (std::size_t i = 0; i < slots.size(); ++i)
        readConnection(node.items()[i], place.item(i), slots[i]);
}

void AssetReader::readConnection(const JsonNode& node, const Place& place, Asset*& slot)
{
    Connection connection;
    connection.from = _asset;
    connection.slot = &slot;
    connection.file = _file.index;
    switch (node.kind())
    {
    case Kind::Text:
        connection.id = node.text();
        connection.pointer = place.pointer();
        break;
    case Kind::Object:
        connection.to = AssetReader(node, place, _file, _owner).readInline();
        break;
    default:
        return _file.report.error(place, "expected the id of an asset, or an asset");
    }
    _file.loading.connections.push_back(std::move(connection));
}

} // namespace

Asset* readAsset(const JsonNode& node, const Place& place, FileScope& file)
{
    return AssetReader(node, place, file, {}).readTopLevel();
}

} // namespace vyr::assetlib
