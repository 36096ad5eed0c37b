#pragma once

#include <algorithm>

#include <kelvor/platform/assets/PropertyType.h>

#include "support/Assets.h"

namespace vyr::support
{

/// Makes assets of the test library, one property a call:
///
///     const AssetPtr asset =
///         AssetBuilder("GenericSchema").name("Oak").scalar("generic_glossiness", 0.3).build();
///
/// Properties keep the order of the calls. A builder makes one asset.
class AssetBuilder
{
  public:
    using Text = const std::string&;
    using Unit = std::uint32_t;

    /// An asset of that schema with the identifier "asset-id", the name "Test Material" and the own
    /// name "test-asset".
    explicit AssetBuilder(Text schema = "GenericSchema")
    {
        _content.definition.emplace(schema);
        id("asset-id").name("Test Material").ownName("test-asset");
    }

    AssetBuilder& id(Text text) { return set(_content.identifier, text); }
    AssetBuilder& name(Text text) { return set(_content.displayName, text); }
    AssetBuilder& description(Text text) { return set(_content.description, text); }
    AssetBuilder& ownName(Text text)
    {
        return set(_content.identity, Named<kpa::IAssetIdentity>(text));
    }
    AssetBuilder& withoutIdentity() { return set(_content.identity, std::nullopt); }
    AssetBuilder& withoutDefinition() { return set(_content.definition, std::nullopt); }
    AssetBuilder& withoutClone() { return set(_content.clonable, false); }
    AssetBuilder& withoutWorkingNames() { return set(_content.hasWorkingNames, false); }

    AssetBuilder& scalar(Text name, double value, Unit unit = 0)
    {
        return scalars(name, {value}, unit);
    }
    AssetBuilder& scalars(Text name, const std::vector<double>& values, Unit unit = 0)
    {
        return property(name, kpa::ePropertyType_Scalar, scalarValue(values, unit));
    }
    AssetBuilder& integer(Text name, std::int32_t value)
    {
        return property(name, kpa::ePropertyType_Integer,
                        integerValue({static_cast<double>(value)}));
    }
    AssetBuilder& boolean(Text name, bool value)
    {
        return property(name, kpa::ePropertyType_Boolean, booleanValue({value ? 1.0 : 0.0}));
    }
    AssetBuilder& color(Text name, double red, double green, double blue, double alpha = 1.0)
    {
        return property(name, kpa::ePropertyType_Color, colorValue({{red, green, blue, alpha}}));
    }
    AssetBuilder& string(Text name, Text value)
    {
        return property(name, kpa::ePropertyType_String, textValue(value));
    }
    AssetBuilder& text(Text name, Text value)
    {
        return property(name, kpa::ePropertyType_Text, textValue(value));
    }
    AssetBuilder& uri(Text name, Text stored, Text preferred = "")
    {
        return property(name, kpa::ePropertyType_URI, uriValue(stored, preferred));
    }
    /// A choice list whose only selected choice is `selected`.
    AssetBuilder& choice(Text name, Text selected)
    {
        return property(name, kpa::ePropertyType_ChoiceList,
                        choiceValue({"another", selected}, {1}));
    }
    /// Any value, none included, under any type code.
    AssetBuilder& property(Text name, std::uint32_t type, ValuePtr value)
    {
        TestProperty& added = table().emplace_back();
        added.name = name;
        added.type = type;
        return set(added.value, std::move(value));
    }
    /// Connects an asset, or null, to the property of that name; makes a property of type code 9,
    /// which has no value, when there is none yet. The asset may be shared with others.
    AssetBuilder& connect(Text name, const AssetPtr& asset)
    {
        const auto find = [&]
        {
            return std::find_if(table().begin(), table().end(),
                                [&](auto& p) { return p.name == name; });
        };
        if (find() == table().end())
            property(name, kpa::ePropertyType_Reference, nullptr);
        find()->connected.push_back(shareAsset(asset));
        return *this;
    }
    /// The property that was added last says that it has connections, whatever it has.
    AssetBuilder& claimingConnections() { return set(table().back().claimsConnections, true); }
    /// Later properties go to the generic property table that the asset carries.
    AssetBuilder& generic() { return set(_content.genericTable, PropertyTable()); }

    AssetPtr build() { return makeAsset(std::exchange(_content, AssetContent())); }

  private:
    std::deque<TestProperty>& table()
    {
        return (_content.genericTable ? *_content.genericTable : _content.table).properties;
    }
    template <class T, class U> AssetBuilder& set(T& field, U&& value)
    {
        field = std::forward<U>(value);
        return *this;
    }

    AssetContent _content;
};

/// A bitmap texture over an image file.
inline AssetPtr bitmapAsset(const std::string& path)
{
    return AssetBuilder("UnifiedBitmapSchema")
        .id("bitmap")
        .text("VersionGUID", "UnifiedBitmapSchema")
        .uri("unifiedbitmap_Bitmap", path)
        .build();
}

} // namespace vyr::support
