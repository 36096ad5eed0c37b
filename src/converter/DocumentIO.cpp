#include <MaterialTranslation/DocumentIO.h>

#include <algorithm>
#include <string_view>

#include <MaterialXFormat/XmlIo.h>

#include "core/ReplaceFile.h"

namespace vyr::MaterialTranslation
{

namespace
{

/// Takes the first `length` characters off a text.
std::string_view take(std::string_view& text, std::size_t length)
{
    const std::string_view taken = text.substr(0, length);
    text.remove_prefix(taken.size());
    return taken;
}

/// MaterialX leaves "<" in attribute values as it is, which its own reader takes, but XML does not
/// allow.
/// @param rest tags, comments and white space.
std::string escapeAttributes(std::string_view rest)
{
    constexpr std::string_view commentStart = "<!--";
    constexpr std::string_view commentEnd = "-->";
    std::string result;
    result.reserve(rest.size());
    while (!rest.empty())
    {
        result += take(rest, std::min(rest.find('"'), rest.find(commentStart)));
        if (rest.starts_with(commentStart))
        {
            result += take(rest, rest.find(commentEnd));
            continue;
        }
        result += take(rest, 1); // the opening quote
        for (const char c : take(rest, rest.find('"')))
            result += c == '<' ? std::string_view("&lt;") : std::string_view(&c, 1);
        result += take(rest, 1); // the closing one
    }
    return result;
}

} // namespace

std::string documentToXml(const MaterialX::DocumentPtr& document)
{
    return escapeAttributes(MaterialX::writeToXmlString(document));
}

void writeDocumentFile(const MaterialX::DocumentPtr& document, const std::filesystem::path& file)
{
    core::writeFileAtomically(file, documentToXml(document));
}

void writeFileAtomically(const std::filesystem::path& file, std::string_view bytes)
{
    core::writeFileAtomically(file, bytes);
}

} // namespace vyr::MaterialTranslation
