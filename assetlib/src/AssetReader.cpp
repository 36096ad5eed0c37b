#include "Loading.h"

#include <optional>

#include <kelvor/platform/assets/PropertyType.h>

#include "JsonReaders.h"
#include "base/Text.h"

namespace vyr::assetlib
{

namespace
{

using Kind = JsonValue::Kind;

constexpr std::string_view versionProperty = "VersionGUID";
constexpr std::string_view hiddenProperty = "Hidden";

/// One text for "eng", or an object from language tag to text.
std::optional<std::vector<DisplayName>> readDisplayNames(JsonValue value, Report& report)
{
    std::vector<DisplayName> names;
    if (value.kind() == Kind::Text)
        names.emplace_back("eng", value.text());
    else if (value.kind() != Kind::Object)
        report.error(value, "expected a text, or an object from language to text");
    else
    {
        for (const JsonValue member : value.items())
        {
            if (const auto text = readText(member, report))
                names.emplace_back(member.name(), *text);
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
    AssetReader(JsonValue value, FileContext& file, std::string_view owner)
        : _file(file), _object(value, file.report), _owner(owner)
    {
    }

    Asset* readTopLevel(const std::string& pointer);
    Asset* readInline();

  private:
    using Properties = std::vector<Property>;

    void read();
    void readId(const std::string& pointer);
    void readTexts();
    Properties readProperties(std::string_view key, bool isGeneric);
    void addStandardProperties(Properties& properties);
    void readConnections(JsonValue value, Property& property);
    void readConnection(JsonValue value, Asset*& slot);

    FileContext& _file;
    ObjectReader _object;
    std::string_view _owner;
    Asset* _asset = nullptr;
};

Asset* AssetReader::readTopLevel(const std::string& pointer)
{
    if (!_object.isObject())
        return nullptr;
    _asset = &_file.loading.shelf.add();
    readId(pointer);
    _file.loading.assets.push_back(_asset);
    read();
    return _asset;
}

void AssetReader::readId(const std::string& pointer)
{
    const auto member = _object.require("id");
    const auto text = member ? readText(*member, _file.report) : std::nullopt;
    if (!text)
        return;
    if (text->empty())
        return _file.report.error(*member, "expected an id that is not empty");
    const std::string_view id = _file.keep(*text);
    _asset->content().id = id;
    _owner = id;
    _file.loading.origins.push_back(
        {id, _asset, _file.index, _file.report.token(*member), pointer});
}

Asset* AssetReader::readInline()
{
    if (!_object.isObject())
        return nullptr;
    _asset = &_file.loading.shelf.add();
    if (const auto id = _object.find("id"))
        _file.report.error(*id, "expected no id in an inline asset");
    read();
    return _asset;
}

void AssetReader::read()
{
    AssetContent& content = _asset->content();
    readTexts();
    Properties properties = readProperties("properties", false);
    addStandardProperties(properties);
    content.properties = PropertyTable(properties, _file.arena());
    if (_object.find("genericProperties"))
        content.genericProperties.emplace(readProperties("genericProperties", true), _file.arena());
    _object.reportUnknownKeys();
}

void AssetReader::readTexts()
{
    AssetContent& content = _asset->content();
    std::string_view schema;
    std::optional<std::string_view> name;
    std::string_view description;
    std::vector<DisplayName> displayNames;
    _object.readRequired("schema", schema, readText);
    _object.read("name", name, readText);
    _object.read("displayName", displayNames, readDisplayNames);
    _object.read("description", description, readText);
    content.definition = Named<platform::IAssetDefinition>(_file.keepCommon(schema));
    if (name)
        content.identity.emplace(_file.keep(*name));
    for (auto& [language, text] : displayNames)
    {
        language = _file.keepCommon(language);
        text = _file.keep(text);
    }
    content.displayNames = _file.arena().keep(displayNames);
    content.description = _file.keep(description);
}

AssetReader::Properties AssetReader::readProperties(std::string_view key, bool isGeneric)
{
    Properties properties;
    const auto table = _object.find(key);
    if (!table)
        return properties;
    if (table->kind() != Kind::Object)
    {
        _file.report.error(*table, "expected an object from property name to property");
        return properties;
    }
    properties.reserve(table->items().size() + 2);
    for (const JsonValue member : table->items())
    {
        const bool isStandard = member.name() == versionProperty || member.name() == hiddenProperty;
        if (member.kind() == Kind::Null && isStandard && !isGeneric)
            continue;
        auto parts = readProperty(member, _file, _owner);
        if (!parts)
            continue;
        if (parts->connected)
            readConnections(*parts->connected, parts->property);
        properties.push_back(parts->property);
    }
    return properties;
}

/// Adds the properties that every asset has, unless the file says something about them.
void AssetReader::addStandardProperties(Properties& properties)
{
    Arena& arena = _file.arena();
    const auto written = _object.find("properties");
    if (!written || !written->member(versionProperty))
        properties.emplace_back(versionProperty, platform::ePropertyType_Text,
                                arena.make<StringValue>(_asset->content().definition.name()));
    if (!written || !written->member(hiddenProperty))
        properties.emplace_back(hiddenProperty, platform::ePropertyType_Boolean,
                                arena.make<BooleanValue>(false));
}

void AssetReader::readConnections(JsonValue value, Property& property)
{
    const bool isList = value.kind() == Kind::Array;
    const std::span<Asset*> slots =
        _file.arena().keep(std::vector<Asset*>(isList ? value.items().size() : 1));
    property.setConnections(slots);
    if (!isList)
        return readConnection(value, slots.front());
    std::size_t index = 0;
    for (const JsonValue item : value.items())
        readConnection(item, slots[index++]);
}

void AssetReader::readConnection(JsonValue value, Asset*& slot)
{
    Connection connection{.from = _asset, .slot = &slot, .file = _file.index};
    switch (value.kind())
    {
    case Kind::Text:
        connection.id = _file.keep(value.text());
        connection.token = _file.report.token(value);
        break;
    case Kind::Object:
        connection.to = AssetReader(value, _file, _owner).readInline();
        break;
    default:
        return _file.report.error(value, "expected the id of an asset, or an asset");
    }
    _file.loading.connections.push_back(connection);
}

} // namespace

Asset* readAsset(JsonValue value, const std::string& pointer, FileContext& file)
{
    return AssetReader(value, file, {}).readTopLevel(pointer);
}

} // namespace vyr::assetlib
