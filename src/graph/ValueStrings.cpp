#include "graph/ValueStrings.h"

#include <array>
#include <charconv>
#include <iterator>

namespace vyr::MaterialTranslation::graph
{

namespace mx = MaterialX;

namespace
{

// MaterialX's own defaults. A host may have chosen others for its thread; they then hold for us
// too.
constexpr int defaultPrecision = 6;

bool formattingIsDefault()
{
    return mx::Value::getFloatFormat() == mx::Value::FloatFormatDefault &&
           mx::Value::getFloatPrecision() == defaultPrecision;
}

template <class Vector> std::string join(const Vector& value)
{
    std::string text = valueString(value[0]);
    for (std::size_t i = 1; i < value.numElements(); ++i)
    {
        text += mx::ARRAY_PREFERRED_SEPARATOR;
        text += valueString(value[i]);
    }
    return text;
}

} // namespace

std::string valueString(float value)
{
    if (!formattingIsDefault())
        return mx::toValueString(value);
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value,
                                   std::chars_format::general, defaultPrecision);
    return {text.data(), end.ptr};
}

std::string valueString(const mx::Color3& value)
{
    return join(value);
}

std::string valueString(const mx::Vector2& value)
{
    return join(value);
}

std::string valueString(const mx::Vector3& value)
{
    return join(value);
}

} // namespace vyr::MaterialTranslation::graph
