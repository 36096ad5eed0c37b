#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <tuple>

#include <kelvor/platform/assets/IChoiceListValue.h>
#include <kelvor/platform/assets/IIntegerValue.h>
#include <kelvor/platform/assets/IScalarValue.h>
#include <kelvor/platform/assets/IStringValue.h>
#include <kelvor/platform/assets/IUriValue.h>

#include "base/Paths.h"

namespace vyr::assetlib
{

namespace platform = kelvor::platform::assets;
using kelvor::platform::core::string::UTF8String;
using kelvor::platform::core::string::WideString;

// Texts and arrays of the classes here are in the memory of the store.

/// What a value answers unless its kind says otherwise: one component, no unit.
template <class Interface>
class ValueOf : public Interface
{
  public:
    std::size_t GetComponentCount() const override { return 1; }
    std::uint32_t GetUnit() const override { return 0; }
    bool GetBoolean(std::size_t) const override { return false; }
    void GetColor(std::size_t, double&, double&, double&, double&) const override {}
};

template <class T> T componentAt(std::span<const T> components, std::size_t index)
{
    return index < components.size() ? components[index] : T{};
}

class BooleanValue final : public ValueOf<platform::IValue>
{
  public:
    explicit BooleanValue(bool value) : _value(value) {}
    bool GetBoolean(std::size_t index) const override { return index == 0 && _value; }

  private:
    bool _value;
};

class ColorValue final : public ValueOf<platform::IValue>
{
  public:
    /// @param channels red, green, blue and perhaps alpha, else 1
    explicit ColorValue(std::span<const double> channels)
    {
        std::ranges::copy(channels, _channels.begin());
    }
    void GetColor(std::size_t index, double& red, double& green, double& blue,
                  double& alpha) const override
    {
        if (index == 0)
            std::tie(red, green, blue, alpha) = std::tuple_cat(_channels);
    }

  private:
    std::array<double, 4> _channels = {0.0, 0.0, 0.0, 1.0};
};

class StringValue final : public ValueOf<platform::IStringValue>
{
  public:
    explicit StringValue(std::string_view text) : _text(text) {}
    void GetString(UTF8String& text, platform::TextForm) const override
    {
        text = UTF8String(_text);
    }

  private:
    std::string_view _text;
};

/// Both forms are the same text: the reference was looked up when it was loaded.
class UriValue final : public ValueOf<platform::IUriValue>
{
  public:
    explicit UriValue(std::string_view text) : _text(text) {}
    void GetUri(UTF8String& text, platform::TextForm) const override { text = UTF8String(_text); }
    void GetUri(WideString& text, platform::TextForm) const override
    {
        text = WideString(base::wideFromUtf8(_text));
    }

  private:
    std::string_view _text;
};

class IntegerValue final : public ValueOf<platform::IIntegerValue>
{
  public:
    explicit IntegerValue(std::span<const std::int32_t> components) : _components(components) {}
    std::size_t GetComponentCount() const override { return _components.size(); }
    std::int32_t GetInteger(std::size_t index) const override
    {
        return componentAt(_components, index);
    }

  private:
    std::span<const std::int32_t> _components;
};

class ScalarValue final : public ValueOf<platform::IScalarValue>
{
  public:
    ScalarValue(std::span<const double> components, std::uint32_t unit)
        : _components(components), _unit(unit)
    {
    }
    std::size_t GetComponentCount() const override { return _components.size(); }
    std::uint32_t GetUnit() const override { return _unit; }
    double GetScalar(std::size_t index) const override { return componentAt(_components, index); }

  private:
    std::span<const double> _components;
    std::uint32_t _unit;
};

/// What has a name and nothing else.
template <class Interface> class Named final : public Interface
{
  public:
    explicit Named(std::string_view name) : _name(name) {}
    void GetName(UTF8String& name) const override { name = UTF8String(_name); }
    std::string_view name() const { return _name; }

  private:
    std::string_view _name;
};

using Choice = Named<platform::IChoice>;

class ChoiceListValue final : public ValueOf<platform::IChoiceListValue>,
                              private platform::IChoiceTable
{
  public:
    ChoiceListValue(std::span<const Choice> choices, std::span<const std::int32_t> selected)
        : _choices(choices), _selected(selected)
    {
    }
    std::size_t GetSelectedCount() const override { return _selected.size(); }
    std::int32_t GetSelectedIndex(std::size_t position) const override
    {
        return position < _selected.size() ? _selected[position] : -1;
    }
    const platform::IChoiceTable* GetChoiceTable() const override { return this; }

  private:
    std::size_t GetChoiceCount() const override { return _choices.size(); }
    const platform::IChoice* GetChoice(std::size_t index) const override
    {
        return index < _choices.size() ? &_choices[index] : nullptr;
    }

    std::span<const Choice> _choices;
    std::span<const std::int32_t> _selected;
};

/// A property's value of any kind, in the memory of the store; null when there is none.
using Value = const platform::IValue*;

} // namespace vyr::assetlib
