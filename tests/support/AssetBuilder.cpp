#include "support/AssetBuilder.h"

#include <algorithm>
#include <utility>

#include <kelvor/platform/assets/PropertyType.h>

namespace vyr::support
{

using namespace kelvor::platform::assets;

AssetBuilder::AssetBuilder(const std::string& schema)
{
    _content.identifier = "asset-id";
    _content.displayName = "Test Material";
    _content.ownName = "test-asset";
    _content.schema = schema;
}

AssetBuilder& AssetBuilder::id(const std::string& identifier)
{
    _content.identifier = identifier;
    return *this;
}

AssetBuilder& AssetBuilder::name(const std::string& displayName)
{
    _content.displayName = displayName;
    return *this;
}

AssetBuilder& AssetBuilder::description(const std::string& text)
{
    _content.description = text;
    return *this;
}

AssetBuilder& AssetBuilder::ownName(const std::string& text)
{
    _content.ownName = text;
    return *this;
}

AssetBuilder& AssetBuilder::scalar(const std::string& name, double value, std::uint32_t unit)
{
    return scalars(name, {value}, unit);
}

AssetBuilder& AssetBuilder::scalars(const std::string& name, std::vector<double> values,
                                    std::uint32_t unit)
{
    return property(name, ePropertyType_Scalar, scalarValue(std::move(values), unit));
}

AssetBuilder& AssetBuilder::integer(const std::string& name, std::int32_t value)
{
    return property(name, ePropertyType_Integer, integerValue({value}));
}

AssetBuilder& AssetBuilder::boolean(const std::string& name, bool value)
{
    return property(name, ePropertyType_Boolean, booleanValue({value}));
}

AssetBuilder& AssetBuilder::color(const std::string& name, double red, double green, double blue,
                                  double alpha)
{
    return property(name, ePropertyType_Color, colorValue({{red, green, blue, alpha}}));
}

AssetBuilder& AssetBuilder::string(const std::string& name, const std::string& value)
{
    return property(name, ePropertyType_String, textValue(value));
}

AssetBuilder& AssetBuilder::text(const std::string& name, const std::string& value)
{
    return property(name, ePropertyType_Text, textValue(value));
}

AssetBuilder& AssetBuilder::uri(const std::string& name, const std::string& stored,
                                const std::string& preferred)
{
    return property(name, ePropertyType_URI, uriValue(stored, preferred));
}

AssetBuilder& AssetBuilder::choice(const std::string& name, const std::string& selected)
{
    return property(name, ePropertyType_ChoiceList, choiceValue({"another", selected}, {1}));
}

AssetBuilder& AssetBuilder::connect(const std::string& name, const AssetPtr& asset)
{
    const auto isNamed = [&](const PropertyRecord& record) { return record.name == name; };
    if (std::none_of(table().begin(), table().end(), isNamed))
        property(name, ePropertyType_Reference, nullptr);
    std::find_if(table().begin(), table().end(), isNamed)->connected.push_back(shareAsset(asset));
    return *this;
}

AssetBuilder& AssetBuilder::generic()
{
    _toGenericTable = true;
    _content.genericProperties.emplace();
    return *this;
}

AssetBuilder& AssetBuilder::property(const std::string& name, std::uint32_t type, ValuePtr value)
{
    PropertyRecord& record = table().emplace_back();
    record.name = name;
    record.type = type;
    record.value = std::move(value);
    return *this;
}

AssetBuilder& AssetBuilder::claiming(Connections connections)
{
    table().back().connections = connections;
    return *this;
}

AssetBuilder& AssetBuilder::withoutIdentity()
{
    _content.ownName.reset();
    return *this;
}

AssetBuilder& AssetBuilder::withoutDefinition()
{
    _content.schema.reset();
    return *this;
}

AssetBuilder& AssetBuilder::withoutListing()
{
    _content.listsProperties = false;
    return *this;
}

AssetBuilder& AssetBuilder::withoutClone()
{
    _content.clonable = false;
    return *this;
}

AssetPtr AssetBuilder::build()
{
    return makeAsset(std::exchange(_content, AssetContent()));
}

std::deque<PropertyRecord>& AssetBuilder::table()
{
    return _toGenericTable ? *_content.genericProperties : _content.properties;
}

AssetPtr bitmapAsset(const std::string& path)
{
    return AssetBuilder("UnifiedBitmapSchema")
        .id("bitmap")
        .name("Bitmap")
        .text("VersionGUID", "UnifiedBitmapSchema")
        .uri("unifiedbitmap_Bitmap", path)
        .build();
}

} // namespace vyr::support
