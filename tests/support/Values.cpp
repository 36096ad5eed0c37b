#include <kelvor/platform/assets/IChoiceListValue.h>
#include <kelvor/platform/assets/IIntegerValue.h>
#include <kelvor/platform/assets/IScalarValue.h>
#include <kelvor/platform/assets/IStringValue.h>
#include <kelvor/platform/assets/IUriValue.h>

#include "support/Assets.h"

namespace vyr::support
{

namespace
{

using kelvor::platform::core::string::WideString;

/// What all values have in common; numbers are the first channels of colours. As it stands, a value
/// of Booleans or of colours: nobody can tell from the value.
template <class Interface> struct Value : Interface
{
    std::size_t GetComponentCount() const override { return passing(components.size()); }
    std::uint32_t GetUnit() const override { return passing(unit); }
    bool GetBoolean(std::size_t index) const override { return number(index) != 0; }
    void GetColor(std::size_t index, double& red, double& green, double& blue,
                  double& alpha) const override
    {
        if (const Rgba* color = entryAt(components, index))
            std::tie(red, green, blue, alpha) = std::tuple_cat(*color);
    }
    double number(std::size_t index) const
    {
        const Rgba* component = entryAt(components, index);
        return component ? component->front() : 0;
    }

    std::vector<Rgba> components = {{}};
    std::uint32_t unit = 0;
};

struct Scalars final : Value<kpa::IScalarValue>
{
    double GetScalar(std::size_t index) const override { return number(index); }
};

struct Integers final : Value<kpa::IIntegerValue>
{
    std::int32_t GetInteger(std::size_t index) const override
    {
        return static_cast<std::int32_t>(number(index));
    }
};

struct Text final : Value<kpa::IStringValue>
{
    void GetString(UTF8String& result, TextForm) const override { result = passing(text); }
    std::string text;
};

struct Uri final : Value<kpa::IUriValue>
{
    void GetUri(UTF8String& text, kpa::TextForm form) const override { text = textOf(form); }
    void GetUri(WideString& text, kpa::TextForm form) const override
    {
        const std::string narrow = textOf(form);
        text = WideString(std::wstring(narrow.begin(), narrow.end()));
    }
    std::string textOf(kpa::TextForm form) const
    {
        return passing(form == kpa::TextForm::Preferred && !preferred.empty() ? preferred : stored);
    }
    std::string stored;
    std::string preferred;
};

struct ChoiceList final : Value<kpa::IChoiceListValue>, kpa::IChoiceTable
{
    std::size_t GetSelectedCount() const override { return passing(selected.size()); }
    std::int32_t GetSelectedIndex(std::size_t position) const override
    {
        const std::int32_t* found = entryAt(selected, position);
        return found ? *found : 0;
    }
    const IChoiceTable* GetChoiceTable() const override
    {
        return passing(choices.empty() ? nullptr : this);
    }
    std::size_t GetChoiceCount() const override { return passing(choices.size()); }
    const kpa::IChoice* GetChoice(std::size_t index) const override
    {
        return entryAt(choices, index);
    }

    std::vector<Named<kpa::IChoice>> choices;
    std::vector<std::int32_t> selected;
};

template <class Kind>
std::shared_ptr<Kind> numbers(const std::vector<double>& components, std::uint32_t unit = 0)
{
    auto value = std::make_shared<Kind>();
    value->components.clear();
    for (const double component : components)
        value->components.push_back({component});
    value->unit = unit;
    return value;
}

} // namespace

ValuePtr scalarValue(const std::vector<double>& components, std::uint32_t unit)
{
    return numbers<Scalars>(components, unit);
}

ValuePtr integerValue(const std::vector<double>& components)
{
    return numbers<Integers>(components);
}

ValuePtr booleanValue(const std::vector<double>& components)
{
    return numbers<Value<kpa::IValue>>(components);
}

ValuePtr colorValue(std::vector<Rgba> colors)
{
    auto value = std::make_shared<Value<kpa::IValue>>();
    value->components = std::move(colors);
    return value;
}

ValuePtr textValue(std::string text)
{
    auto value = std::make_shared<Text>();
    value->text = std::move(text);
    return value;
}

ValuePtr uriValue(std::string stored, std::string preferred)
{
    auto value = std::make_shared<Uri>();
    value->stored = std::move(stored);
    value->preferred = std::move(preferred);
    return value;
}

ValuePtr choiceValue(const std::vector<std::string>& choices, std::vector<std::int32_t> selected)
{
    auto value = std::make_shared<ChoiceList>();
    for (const std::string& name : choices)
        value->choices.emplace_back(name);
    value->selected = std::move(selected);
    return value;
}

} // namespace vyr::support
