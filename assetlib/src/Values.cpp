#include "Values.h"

#include "Paths.h"

namespace vyr::assetlib
{

namespace
{

template <class T>
T componentAt(std::span<const T> components, std::size_t index)
{
    return index < components.size() ? components[index] : T{};
}

} // namespace

void ColorValue::GetColor(std::size_t index, double& red, double& green, double& blue,
                          double& alpha) const
{
    if (index != 0)
        return;
    red = _red;
    green = _green;
    blue = _blue;
    alpha = _alpha;
}

void UriValue::GetUri(WideString& text, platform::TextForm) const
{
    text = WideString(wideOf(std::string(_text)));
}

std::int32_t IntegerValue::GetInteger(std::size_t index) const
{
    return componentAt(_components, index);
}

double ScalarValue::GetScalar(std::size_t index) const
{
    return componentAt(_components, index);
}

const platform::IChoice* ChoiceTable::GetChoice(std::size_t index) const
{
    return index < _choices.size() ? &_choices[index] : nullptr;
}

std::int32_t ChoiceListValue::GetSelectedIndex(std::size_t position) const
{
    return position < _selected.size() ? _selected[position] : -1;
}

} // namespace vyr::assetlib
