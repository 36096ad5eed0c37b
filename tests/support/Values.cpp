#include "support/Values.h"

#include <optional>
#include <type_traits>
#include <utility>

#include <kelvor/platform/assets/IChoiceListValue.h>
#include <kelvor/platform/assets/IIntegerValue.h>
#include <kelvor/platform/assets/IScalarValue.h>
#include <kelvor/platform/assets/IStringValue.h>
#include <kelvor/platform/assets/IUriValue.h>

#include "support/Host.h"

namespace vyr::support
{

namespace
{

using namespace kelvor::platform::assets;
using kelvor::platform::core::string::UTF8String;
using kelvor::platform::core::string::WideString;

/// Delivers element `index`, or records the breach and delivers a default one.
template <class T>
T elementAt(const std::vector<T>& elements, std::size_t index, const char* operation)
{
    passOperation(operation);
    if (index < elements.size())
        return elements[index];
    recordBreach(std::string(operation) + ": component " + std::to_string(index) + " of " +
                 std::to_string(elements.size()));
    return T{};
}

/// What all values have in common. As it stands, a value of Booleans or of colours.
template <class Interface> class Value : public Interface
{
  public:
    Value() = default;
    Value(std::size_t count, std::uint32_t unit) : _count(count), _unit(unit) {}
    ~Value() override = default;

    std::size_t GetComponentCount() const override
    {
        passOperation("IValue::GetComponentCount");
        return _count;
    }
    std::uint32_t GetUnit() const override
    {
        passOperation("IValue::GetUnit");
        return _unit;
    }
    bool GetBoolean(std::size_t index) const override
    {
        return isOtherPlainKind(booleans.empty(), index)
                   ? false
                   : elementAt(booleans, index, "IValue::GetBoolean");
    }
    void GetColor(std::size_t index, double& red, double& green, double& blue,
                  double& alpha) const override
    {
        if (isOtherPlainKind(colors.empty(), index))
            return;
        const Rgba color = elementAt(colors, index, "IValue::GetColor");
        red = color[0];
        green = color[1];
        blue = color[2];
        alpha = color[3];
    }

    std::vector<bool> booleans;
    std::vector<Rgba> colors;

  private:
    /// A colour under the type of a Boolean, or the other way round: nobody can tell from the value.
    bool isOtherPlainKind(bool lacksElements, std::size_t index) const
    {
        return std::is_same_v<Interface, IValue> && lacksElements && index < _count;
    }

    std::size_t _count = 1;
    std::uint32_t _unit = 0;
};

class Scalars final : public Value<IScalarValue>
{
  public:
    Scalars(std::vector<double> components, std::uint32_t unit)
        : Value(components.size(), unit), _components(std::move(components))
    {
    }
    double GetScalar(std::size_t index) const override
    {
        return elementAt(_components, index, "IScalarValue::GetScalar");
    }

  private:
    std::vector<double> _components;
};

class Integers final : public Value<IIntegerValue>
{
  public:
    Integers(std::vector<std::int32_t> components, std::uint32_t unit)
        : Value(components.size(), unit), _components(std::move(components))
    {
    }
    std::int32_t GetInteger(std::size_t index) const override
    {
        return elementAt(_components, index, "IIntegerValue::GetInteger");
    }

  private:
    std::vector<std::int32_t> _components;
};

class Text final : public Value<IStringValue>
{
  public:
    explicit Text(std::string text) : _text(std::move(text)) {}
    void GetString(UTF8String& text) const override
    {
        passOperation("IStringValue::GetString");
        text = UTF8String(_text);
    }

  private:
    std::string _text;
};

class Uri final : public Value<IUriValue>
{
  public:
    Uri(std::string stored, std::string preferred)
        : _stored(std::move(stored)), _preferred(std::move(preferred))
    {
    }
    void GetUri(UTF8String& text, UriForm form) const override
    {
        passOperation("IUriValue::GetUri");
        text = UTF8String(textOf(form));
    }
    void GetUri(WideString& text, UriForm form) const override
    {
        passOperation("IUriValue::GetUri wide");
        const std::string& narrow = textOf(form);
        text = WideString(std::wstring(narrow.begin(), narrow.end()));
    }

  private:
    const std::string& textOf(UriForm form) const
    {
        return form == UriForm::Preferred && !_preferred.empty() ? _preferred : _stored;
    }

    std::string _stored;
    std::string _preferred;
};

class Choice final : public IChoice
{
  public:
    explicit Choice(std::string name) : _name(std::move(name)) {}
    void GetName(UTF8String& name) const override
    {
        passOperation("IChoice::GetName");
        name = UTF8String(_name);
    }

  private:
    std::string _name;
};

class Choices final : public IChoiceTable
{
  public:
    explicit Choices(const std::vector<std::string>& names) : _choices(names.begin(), names.end())
    {
    }
    std::size_t GetChoiceCount() const override
    {
        passOperation("IChoiceTable::GetChoiceCount");
        return _choices.size();
    }
    const IChoice* GetChoice(std::size_t index) const override
    {
        passOperation("IChoiceTable::GetChoice");
        if (index < _choices.size())
            return &_choices[index];
        recordBreach("IChoiceTable::GetChoice: choice " + std::to_string(index));
        return nullptr;
    }

  private:
    std::vector<Choice> _choices;
};

class ChoiceList final : public Value<IChoiceListValue>
{
  public:
    ChoiceList(std::optional<Choices> choices, std::vector<std::int32_t> selected)
        : _choices(std::move(choices)), _selected(std::move(selected))
    {
    }
    std::size_t GetSelectedCount() const override
    {
        passOperation("IChoiceListValue::GetSelectedCount");
        return _selected.size();
    }
    std::int32_t GetSelectedIndex(std::size_t position) const override
    {
        return elementAt(_selected, position, "IChoiceListValue::GetSelectedIndex");
    }
    const IChoiceTable* GetChoiceTable() const override
    {
        passOperation("IChoiceListValue::GetChoiceTable");
        return _choices ? &*_choices : nullptr;
    }

  private:
    std::optional<Choices> _choices;
    std::vector<std::int32_t> _selected;
};

} // namespace

ValuePtr scalarValue(std::vector<double> components, std::uint32_t unit)
{
    return std::make_shared<Scalars>(std::move(components), unit);
}

ValuePtr integerValue(std::vector<std::int32_t> components, std::uint32_t unit)
{
    return std::make_shared<Integers>(std::move(components), unit);
}

ValuePtr booleanValue(std::vector<bool> components)
{
    auto value = std::make_shared<Value<IValue>>(components.size(), 0u);
    value->booleans = std::move(components);
    return value;
}

ValuePtr colorValue(std::vector<Rgba> colors)
{
    auto value = std::make_shared<Value<IValue>>(colors.size(), 0u);
    value->colors = std::move(colors);
    return value;
}

ValuePtr textValue(std::string text)
{
    return std::make_shared<Text>(std::move(text));
}

ValuePtr uriValue(std::string stored, std::string preferred)
{
    return std::make_shared<Uri>(std::move(stored), std::move(preferred));
}

ValuePtr choiceValue(std::vector<std::string> choices, std::vector<std::int32_t> selected)
{
    return std::make_shared<ChoiceList>(Choices(choices), std::move(selected));
}

ValuePtr choiceValueWithoutTable(std::vector<std::int32_t> selected)
{
    return std::make_shared<ChoiceList>(std::nullopt, std::move(selected));
}

} // namespace vyr::support
