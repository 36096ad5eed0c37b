#include "support/Values.h"

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
template <class List>
auto elementAt(const List& list, std::size_t index,
               std::source_location where = std::source_location::current())
{
    const auto* found = entryAt(list, index, where);
    return found ? *found : typename List::value_type();
}

/// What all values have in common. As it stands, a value of Booleans or of colours.
template <class Interface> struct Value : Interface
{
    ~Value() override = default;
    std::size_t GetComponentCount() const override { return passing(count); }
    std::uint32_t GetUnit() const override { return passing(unit); }
    bool GetBoolean(std::size_t index) const override { return elementAt(booleans, index); }
    void GetColor(std::size_t index, double& red, double& green, double& blue,
                  double& alpha) const override
    {
        const Rgba color = elementAt(colors, index);
        red = color[0];
        green = color[1];
        blue = color[2];
        alpha = color[3];
    }

    std::size_t count = 1;
    std::uint32_t unit = 0;
    std::deque<bool> booleans;
    std::vector<Rgba> colors;
};

struct Scalars final : Value<IScalarValue>
{
    double GetScalar(std::size_t index) const override { return elementAt(components, index); }
    std::vector<double> components;
};

struct Integers final : Value<IIntegerValue>
{
    std::int32_t GetInteger(std::size_t index) const override
    {
        return elementAt(components, index);
    }
    std::vector<std::int32_t> components;
};

struct Text final : Value<IStringValue>
{
    void GetString(UTF8String& result) const override { result = passing(text); }
    std::string text;
};

struct Uri final : Value<IUriValue>
{
    void GetUri(UTF8String& text, UriForm form) const override { text = passing(textOf(form)); }
    void GetUri(WideString& text, UriForm form) const override
    {
        const std::string& narrow = passing(textOf(form));
        text = WideString(std::wstring(narrow.begin(), narrow.end()));
    }
    const std::string& textOf(UriForm form) const
    {
        return form == UriForm::Preferred && !preferred.empty() ? preferred : stored;
    }
    std::string stored;
    std::string preferred;
};

struct ChoiceList final : Value<IChoiceListValue>, IChoiceTable
{
    std::size_t GetSelectedCount() const override { return passing(selected.size()); }
    std::int32_t GetSelectedIndex(std::size_t position) const override
    {
        return elementAt(selected, position);
    }
    const IChoiceTable* GetChoiceTable() const override
    {
        return passing(hasTable ? this : nullptr);
    }
    std::size_t GetChoiceCount() const override { return passing(choices.size()); }
    const IChoice* GetChoice(std::size_t index) const override { return entryAt(choices, index); }

    bool hasTable = true;
    std::vector<Named<IChoice>> choices;
    std::vector<std::int32_t> selected;
};

template <class List, class T> std::shared_ptr<List> listOf(std::vector<T> components)
{
    auto value = std::make_shared<List>();
    value->count = components.size();
    value->components = std::move(components);
    return value;
}

/// A colour under the type of a Boolean, or the other way round: nobody can tell from the value.
ValuePtr plainValue(std::deque<bool> booleans, std::vector<Rgba> colors)
{
    auto value = std::make_shared<Value<IValue>>();
    value->count = booleans.size();
    value->booleans = std::move(booleans);
    value->colors = std::move(colors);
    return value;
}

} // namespace

ValuePtr scalarValue(std::vector<double> components, std::uint32_t unit)
{
    const auto value = listOf<Scalars>(std::move(components));
    value->unit = unit;
    return value;
}

ValuePtr integerValue(std::vector<std::int32_t> components)
{
    return listOf<Integers>(std::move(components));
}

ValuePtr booleanValue(std::deque<bool> components)
{
    std::vector<Rgba> colors(components.size());
    return plainValue(std::move(components), std::move(colors));
}

ValuePtr colorValue(std::vector<Rgba> colors)
{
    std::deque<bool> booleans(colors.size());
    return plainValue(std::move(booleans), std::move(colors));
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

ValuePtr choiceValueWithoutTable(std::vector<std::int32_t> selected)
{
    auto value = std::make_shared<ChoiceList>();
    value->hasTable = false;
    value->selected = std::move(selected);
    return value;
}

} // namespace vyr::support
