#include "definitions/WholeValues.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string_view>

namespace vyr::MaterialTranslation::definitions
{

namespace
{

// MaterialX's XML reader leaves no others, but documents are also built in memory.
constexpr std::string_view blanks = " \t\r\n";

template <class Number> bool isNumber(std::string_view text)
{
    if (text.starts_with('+'))
        text.remove_prefix(1);
    Number number;
    // MaterialX has seen to the range.
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    return result.ptr == text.data() + text.size();
}

struct NumberType
{
    std::string_view name;
    bool (*isNumber)(std::string_view);
    std::size_t components;
};

constexpr NumberType numberTypes[] = {
    {"integer", isNumber<int>, 1},     {"float", isNumber<float>, 1},
    {"color3", isNumber<float>, 3},    {"color4", isNumber<float>, 4},
    {"vector2", isNumber<float>, 2},   {"vector3", isNumber<float>, 3},
    {"vector4", isNumber<float>, 4},   {"matrix33", isNumber<float>, 9},
    {"matrix44", isNumber<float>, 16},
};

std::string_view trimmed(std::string_view text)
{
    const std::size_t begin = std::min(text.find_first_not_of(blanks), text.size());
    return text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
}

/// Whether the numbers between the separators fill whole values. Arrays of colours and vectors are texts to
/// MaterialX.
bool areNumbers(std::string_view text, const NumberType& type)
{
    constexpr std::string_view blanksAndCommas = ", \t\r\n";
    std::size_t count = 0;
    std::size_t end = 0;
    for (std::size_t at = 0; (at = text.find_first_not_of(blanksAndCommas, at)) != text.npos;
         at = end, ++count)
    {
        end = std::min(text.find_first_of(blanksAndCommas, at), text.size());
        if (!type.isNumber(text.substr(at, end - at)))
            return false;
    }
    return count % type.components == 0;
}

} // namespace

bool isWhole(std::string_view text, std::string_view type)
{
    constexpr std::string_view suffix = "array";
    const bool isArray = type.ends_with(suffix);
    if (isArray)
        type.remove_suffix(suffix.size());
    const auto* known =
        std::ranges::find_if(numberTypes, [&](const NumberType& t) { return t.name == type; });
    if (known == std::end(numberTypes))
        return true;
    return isArray || known->components > 1 ? areNumbers(text, *known)
                                            : known->isNumber(trimmed(text));
}

} // namespace vyr::MaterialTranslation::definitions
