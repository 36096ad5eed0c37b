#pragma once

/// @file
/// A small asset library in memory: what a host implements over its own assets.
///
/// An asset here is a schema, two names and a list of properties. A property holds a value, or is
/// connected to a texture, which is an asset too. Nothing but the reference count changes after
/// construction, so that several threads may read at once.

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <kelvor/platform/assets/IAssetDefinition.h>
#include <kelvor/platform/assets/IAssetInstance.h>
#include <kelvor/platform/assets/IAssetLibraryManager.h>
#include <kelvor/platform/assets/IProperty.h>
#include <kelvor/platform/assets/IScalarValue.h>
#include <kelvor/platform/assets/IStringValue.h>
#include <kelvor/platform/assets/IUriValue.h>
#include <kelvor/platform/assets/PropertyType.h>
#include <kelvor/platform/assets/UnitCode.h>

namespace host
{

namespace assets = kelvor::platform::assets;
using kelvor::platform::core::string::UTF8String;
using kelvor::platform::core::string::WideString;

/// Paths and texts in UTF-8, for which C++20 has a type of characters of its own.
inline std::filesystem::path pathOf(const std::string& text)
{
#if defined(__cpp_char8_t)
    return std::filesystem::path(std::u8string(text.begin(), text.end()));
#else
    return std::filesystem::u8path(text);
#endif
}

inline std::string textOf(const std::filesystem::path& path)
{
    const auto text = path.u8string();
    return std::string(text.begin(), text.end());
}

// Values

/// What every value answers. Each kind below overrides what its type of property promises; the
/// converter asks nothing else of it.
template <class Interface> class Value : public Interface
{
  public:
    std::size_t GetComponentCount() const override { return 1; }
    std::uint32_t GetUnit() const override { return assets::eUnit_None; }
    bool GetBoolean(std::size_t /*index*/) const override { return false; }
    void GetColor(std::size_t /*index*/, double& red, double& green, double& blue,
                  double& alpha) const override
    {
        red = green = blue = alpha = 0;
    }
};

/// Booleans and colours have no interface of their own.
class Flag final : public Value<assets::IValue>
{
  public:
    explicit Flag(bool value) : _value(value) {}
    bool GetBoolean(std::size_t /*index*/) const override { return _value; }

  private:
    bool _value;
};

class Color final : public Value<assets::IValue>
{
  public:
    Color(double red, double green, double blue) : _channels{red, green, blue} {}
    void GetColor(std::size_t /*index*/, double& red, double& green, double& blue,
                  double& alpha) const override
    {
        red = _channels[0];
        green = _channels[1];
        blue = _channels[2];
        alpha = 1;
    }

  private:
    std::array<double, 3> _channels;
};

class Number final : public Value<assets::IScalarValue>
{
  public:
    explicit Number(double value) : _value(value) {}
    double GetScalar(std::size_t /*index*/) const override { return _value; }

  private:
    double _value;
};

class Text final : public Value<assets::IStringValue>
{
  public:
    explicit Text(std::string value) : _value(std::move(value)) {}
    void GetString(UTF8String& text, assets::TextForm /*form*/) const override
    {
        text = UTF8String(_value);
    }

  private:
    std::string _value;
};

/// A reference to an image. This library knows one form of it only.
class Image final : public Value<assets::IUriValue>
{
  public:
    explicit Image(std::string uri) : _uri(std::move(uri)) {}
    void GetUri(UTF8String& text, assets::TextForm /*form*/) const override
    {
        text = UTF8String(_uri);
    }
    void GetUri(WideString& text, assets::TextForm /*form*/) const override
    {
        text = WideString(pathOf(_uri).wstring());
    }

  private:
    std::string _uri;
};

// Properties and assets

class Asset;

/// One reference to an asset, given back when the pointer goes.
using AssetPtr = std::unique_ptr<Asset, assets::IAssetInstanceDeleter>;

/// The values of an asset and of its clones are shared: they never change.
class Property final : public assets::IProperty
{
  public:
    Property(std::string name, bool value)
        : Property(std::move(name), assets::ePropertyType_Boolean, std::make_shared<Flag>(value))
    {
    }
    Property(std::string name, double value)
        : Property(std::move(name), assets::ePropertyType_Scalar, std::make_shared<Number>(value))
    {
    }
    Property(std::string name, Color value)
        : Property(std::move(name), assets::ePropertyType_Color, std::make_shared<Color>(value))
    {
    }
    Property(std::string name, Text value)
        : Property(std::move(name), assets::ePropertyType_Text, std::make_shared<Text>(value))
    {
    }
    Property(std::string name, Image value)
        : Property(std::move(name), assets::ePropertyType_URI, std::make_shared<Image>(value))
    {
    }
    /// Without a value of its own: a texture decides.
    Property(std::string name, const AssetPtr& texture);
    Property(const Property& other);

    const std::string& name() const { return _name; }

    void GetIdentifier(UTF8String& identifier) const override { identifier = UTF8String(_name); }
    std::uint32_t GetType() const override { return _type; }
    const assets::IValue* GetValue() const override { return _value.get(); }
    bool HasConnections() const override { return _texture != nullptr; }
    std::size_t GetConnectionCount() const override { return _texture ? 1 : 0; }
    assets::IAssetInstance* GetConnectedAsset(std::size_t index) const override;

  private:
    Property(std::string name, std::uint32_t type, std::shared_ptr<const assets::IValue> value)
        : _name(std::move(name)), _type(type), _value(std::move(value))
    {
    }

    std::string _name;
    std::uint32_t _type;
    std::shared_ptr<const assets::IValue> _value;
    AssetPtr _texture;
};

/// The schema tells the converter which properties to expect.
class Schema final : public assets::IAssetDefinition
{
  public:
    explicit Schema(std::string name) : _name(std::move(name)) {}
    void GetName(UTF8String& name) const override { name = UTF8String(_name); }

  private:
    std::string _name;
};

class Asset final : public assets::IAssetInstance
{
  public:
    Asset(const std::string& schema, std::string identifier, std::string displayName,
          std::vector<Property> properties)
        : _schema(schema), _identifier(std::move(identifier)), _displayName(std::move(displayName)),
          _properties(std::move(properties))
    {
    }

    /// Another reference to this asset, which the caller owns.
    Asset* share()
    {
        ++_references;
        return this;
    }

    void Release() override
    {
        if (--_references == 0)
            delete this;
    }
    /// The converter works on a clone, so that the original may go meanwhile.
    IAssetInstance* Clone() const override
    {
        return new Asset(_schema, _identifier, _displayName, _properties);
    }

    void GetDisplayName(UTF8String& name, const char* /*language*/) const override
    {
        name = UTF8String(_displayName);
    }
    void GetDescription(UTF8String& description) const override { description = UTF8String(); }
    void GetIdentifier(UTF8String& identifier) const override
    {
        identifier = UTF8String(_identifier);
    }
    const assets::IAssetIdentity* GetIdentity() const override { return nullptr; }
    const assets::IAssetDefinition* GetDefinition() const override { return &_schema; }
    bool HasWorkingPropertyNames() const override { return true; }
    /// Only materials of other schemas than "GenericSchema" carry one.
    const assets::IPropertyConstTable* GetGenericPropertyTable() const override { return nullptr; }

    const assets::IProperty* FindProperty(const UTF8String& name) const override
    {
        for (const Property& property : _properties)
            if (property.name() == name.str())
                return &property;
        return nullptr;
    }
    std::size_t GetPropertyCount() const override { return _properties.size(); }
    const assets::IProperty* GetProperty(std::size_t index) const override
    {
        return &_properties[index];
    }

  private:
    Asset(Schema schema, std::string identifier, std::string displayName,
          std::vector<Property> properties)
        : _schema(std::move(schema)), _identifier(std::move(identifier)),
          _displayName(std::move(displayName)), _properties(std::move(properties))
    {
    }
    /// Whoever holds a reference gives it back with Release.
    ~Asset() = default;

    Schema _schema;
    std::string _identifier;
    std::string _displayName;
    std::vector<Property> _properties;
    std::atomic<int> _references{1};
};

inline Property::Property(std::string name, const AssetPtr& texture)
    : _name(std::move(name)), _type(assets::ePropertyType_Reference), _texture(texture->share())
{
}

inline Property::Property(const Property& other)
    : _name(other._name), _type(other._type), _value(other._value),
      _texture(other._texture ? other._texture->share() : nullptr)
{
}

inline assets::IAssetInstance* Property::GetConnectedAsset(std::size_t /*index*/) const
{
    return _texture->share();
}

inline AssetPtr makeMaterial(std::string identifier, std::string name,
                             std::vector<Property> properties)
{
    return AssetPtr(
        new Asset("GenericSchema", std::move(identifier), std::move(name), std::move(properties)));
}

/// A texture is known by the text "VersionGUID", too.
inline AssetPtr makeBitmap(const std::string& uri)
{
    return AssetPtr(new Asset(
        "UnifiedBitmapSchema", uri, uri,
        {{"VersionGUID", Text("UnifiedBitmapSchema")}, {"unifiedbitmap_Bitmap", Image(uri)}}));
}

// The library as a whole

/// Finds images in one folder.
class Library final : public assets::IAssetLibraryManager, public assets::IPathResolver
{
  public:
    void setImageFolder(std::filesystem::path folder) { _folder = std::move(folder); }

    const assets::IPathResolver* GetPathResolver() const override { return this; }
    bool Resolve(const UTF8String& uri, UTF8String& path) const override
    {
        std::filesystem::path found;
        if (!find(pathOf(uri.str()), found))
            return false;
        path = UTF8String(textOf(found));
        return true;
    }
    bool Resolve(const WideString& uri, WideString& path) const override
    {
        std::filesystem::path found;
        if (!find(std::filesystem::path(uri.str()), found))
            return false;
        path = WideString(found.wstring());
        return true;
    }

  private:
    bool find(const std::filesystem::path& uri, std::filesystem::path& found) const
    {
        found = std::filesystem::absolute(_folder / uri);
        return std::filesystem::is_regular_file(found);
    }

    std::filesystem::path _folder = ".";
};

} // namespace host
