#pragma once

/// @file
/// The smallest asset library: one asset, whose properties hold a number or a colour.

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <string>
#include <utility>
#include <variant>

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
using Content = std::variant<double, Color>;

/// What a number and a colour have in common; each overrides what it can deliver.
template <class Interface> class Value : public Interface
{
  public:
    std::size_t GetComponentCount() const override { return 1; }
    std::uint32_t GetUnit() const override { return assets::eUnit_None; }
    bool GetBoolean(std::size_t) const override { return false; }
    void GetColor(std::size_t, double&, double&, double&, double&) const override {}
};

class ScalarValue final : public Value<assets::IScalarValue>
{
  public:
    explicit ScalarValue(double number) : _number(number) {}

    double GetScalar(std::size_t) const override { return _number; }

  private:
    double _number;
};

class ColorValue final : public Value<assets::IValue>
{
  public:
    explicit ColorValue(const Color& color) : _color(color) {}

    void GetColor(std::size_t, double& red, double& green, double& blue,
                  double& alpha) const override
    {
        red = _color[0];
        green = _color[1];
        blue = _color[2];
        alpha = 1;
    }

  private:
    Color _color;
};

class Property final : public assets::IProperty
{
  public:
    Property(std::string name, const Content& content) : _name(std::move(name))
    {
        if (const double* number = std::get_if<double>(&content))
            _value.emplace<ScalarValue>(*number);
        else
            _value.emplace<ColorValue>(std::get<Color>(content));
    }

    void GetIdentifier(UTF8String& identifier) const override { identifier = UTF8String(_name); }
    std::uint32_t GetType() const override
    {
        return std::holds_alternative<ColorValue>(_value) ? assets::ePropertyType_Color
                                                          : assets::ePropertyType_Scalar;
    }
    const assets::IValue* GetValue() const override
    {
        return std::visit([](const assets::IValue& value) { return &value; }, _value);
    }
    bool HasConnections() const override { return false; }
    std::size_t GetConnectionCount() const override { return 0; }
    assets::IAssetInstance* GetConnectedAsset(std::size_t) const override { return nullptr; }

  private:
    std::string _name;
    std::variant<ScalarValue, ColorValue> _value = ScalarValue(0);
};

class GenericDefinition final : public assets::IAssetDefinition
{
  public:
    void GetName(UTF8String& name) const override { name = "GenericSchema"; }
};

class Asset final : public assets::IAssetInstance
{
  public:
    using Properties = std::map<std::string, Content>;

    Asset(std::string name, const Properties& contents)
        : _name(std::move(name)), _contents(contents)
    {
        for (const auto& [key, content] : contents)
            _properties.try_emplace(key, key, content);
    }

    void Release() override
    {
        if (--_references == 0)
            delete this;
    }
    IAssetInstance* Clone() const override { return new Asset(_name, _contents); }

    void GetDisplayName(UTF8String& name, const char*) const override { name = UTF8String(_name); }
    void GetDescription(UTF8String& description) const override { description = "One asset"; }
    void GetIdentifier(UTF8String& identifier) const override { identifier = "consumer-1"; }
    const assets::IAssetIdentity* GetIdentity() const override { return nullptr; }
    const assets::IAssetDefinition* GetDefinition() const override { return &_definition; }
    bool HasWorkingPropertyNames() const override { return true; }
    const assets::IPropertyConstTable* GetGenericPropertyTable() const override { return nullptr; }

    const assets::IProperty* FindProperty(const UTF8String& name) const override
    {
        const auto found = _properties.find(name.str());
        return found == _properties.end() ? nullptr : &found->second;
    }
    std::size_t GetPropertyCount() const override { return _properties.size(); }
    const assets::IProperty* GetProperty(std::size_t index) const override
    {
        return &std::next(_properties.begin(), static_cast<std::ptrdiff_t>(index))->second;
    }

  private:
    ~Asset() = default;

    std::string _name;
    Properties _contents;
    std::map<std::string, Property> _properties;
    GenericDefinition _definition;
    std::atomic<int> _references{1};
};

} // namespace consumer
