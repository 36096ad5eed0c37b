#pragma once

/// @file
/// The smallest asset library: one asset, whose properties hold a number or a colour.

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <kelvor/platform/assets/IAssetDefinition.h>
#include <kelvor/platform/assets/IAssetInstance.h>
#include <kelvor/platform/assets/IProperty.h>
#include <kelvor/platform/assets/IScalarValue.h>
#include <kelvor/platform/assets/PropertyType.h>
#include <kelvor/platform/assets/UnitCode.h>

namespace consumer
{

namespace assets = kelvor::platform::assets;
using kelvor::platform::core::string::UTF8String;
using Color = std::array<double, 3>;

template <class Interface> class Value : public Interface
{
  public:
    explicit Value(const Color& color) : _color(color) {}

    std::size_t GetComponentCount() const override { return 1; }
    std::uint32_t GetUnit() const override { return assets::eUnit_None; }
    bool GetBoolean(std::size_t) const override { return false; }
    void GetColor(std::size_t, double& red, double& green, double& blue,
                  double& alpha) const override
    {
        red = _color[0];
        green = _color[1];
        blue = _color[2];
        alpha = 1;
    }

  protected:
    Color _color;
};

class Number final : public Value<assets::IScalarValue>
{
  public:
    using Value::Value;
    double GetScalar(std::size_t) const override { return _color[0]; }
};

class Property final : public assets::IProperty
{
  public:
    /// A number is the first component.
    Property(const char* name, std::uint32_t type, const Color& content)
        : _name(name), _type(type), _number(content), _color(content)
    {
    }

    bool isCalled(const UTF8String& name) const { return name.str() == _name; }
    void GetIdentifier(UTF8String& identifier) const override { identifier = UTF8String(_name); }
    std::uint32_t GetType() const override { return _type; }
    const assets::IValue* GetValue() const override
    {
        return _type == assets::ePropertyType_Color ? &_color
                                                    : static_cast<const assets::IValue*>(&_number);
    }
    bool HasConnections() const override { return false; }
    std::size_t GetConnectionCount() const override { return 0; }
    assets::IAssetInstance* GetConnectedAsset(std::size_t) const override { return nullptr; }

  private:
    std::string _name;
    std::uint32_t _type;
    Number _number;
    Value<assets::IValue> _color;
};

class GenericDefinition final : public assets::IAssetDefinition
{
  public:
    void GetName(UTF8String& name) const override { name = "GenericSchema"; }
};

class Asset final : public assets::IAssetInstance
{
  public:
    using Properties = std::vector<Property>;

    explicit Asset(Properties properties) : _properties(std::move(properties)) {}

    void Release() override
    {
        if (--_references == 0)
            delete this;
    }
    IAssetInstance* Clone() const override { return new Asset(_properties); }
    void GetDisplayName(UTF8String& name, const char*) const override { name = "Red Paint"; }
    void GetDescription(UTF8String& description) const override { description = "One asset"; }
    void GetIdentifier(UTF8String& identifier) const override { identifier = "consumer-1"; }
    const assets::IAssetIdentity* GetIdentity() const override { return nullptr; }
    const assets::IAssetDefinition* GetDefinition() const override { return &_definition; }
    bool HasWorkingPropertyNames() const override { return true; }
    const assets::IPropertyConstTable* GetGenericPropertyTable() const override { return nullptr; }

    const assets::IProperty* FindProperty(const UTF8String& name) const override
    {
        for (const Property& property : _properties)
            if (property.isCalled(name))
                return &property;
        return nullptr;
    }
    std::size_t GetPropertyCount() const override { return _properties.size(); }
    const assets::IProperty* GetProperty(std::size_t index) const override
    {
        return &_properties[index];
    }

  private:
    ~Asset() = default;

    Properties _properties;
    GenericDefinition _definition;
    std::atomic<int> _references{1};
};

} // namespace consumer
