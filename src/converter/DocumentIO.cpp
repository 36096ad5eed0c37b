#include <MaterialTranslation/DocumentIO.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <ranges>
#include <string>
#include <string_view>
#include <utility>

#include <MaterialXFormat/XmlIo.h>

#include "base/Paths.h"
#include "base/Text.h"
#include "base/WriteFile.h"
#include "converter/PlainXml.h"

namespace vyr::MaterialTranslation
{

namespace
{

/// Few inputs name files; what an element is costs more to ask than what attributes it has.
bool namesFile(const MaterialX::Element& element)
{
    return element.getAttribute(MaterialX::TypedElement::TYPE_ATTRIBUTE) ==
               MaterialX::FILENAME_TYPE_STRING &&
           !element.getAttribute(MaterialX::ValueElement::VALUE_ATTRIBUTE).empty();
}

/// Whether each "<" begins a line, as the tags and comments that MaterialX writes do: none is in an attribute's
/// value then, where line breaks are escaped.
bool beginsOnlyLines(std::string_view text)
{
    for (auto less = text.find('<'); less != text.npos; less = text.find('<', less + 1))
    {
        const auto before = text.substr(0, less).find_last_not_of(' ');
        if (before != text.npos && text[before] != '\n')
            return false;
    }
    return true;
}

/// MaterialX leaves "<" in attribute values as it is, which its own reader takes, but XML does not
/// allow.
/// @param text tags, comments and white space.
std::string escapeAttributes(std::string text)
{
    if (beginsOnlyLines(text))
        return text;
    constexpr std::string_view commentStart = "<!--";
    constexpr std::string_view commentEnd = "-->";
    const std::string_view all = text;
    std::string result;
    std::size_t done = 0; // what of the text is in the result
    for (std::size_t at = 0; at < all.size();)
    {
        const std::size_t open = std::min(all.find('"', at), all.size());
        // The quotes in a comment enclose nothing.
        if (const auto comment = all.substr(at, open - at).find(commentStart); comment != all.npos)
        {
            at = std::min(all.find(commentEnd, at + comment + commentStart.size()), all.size());
            continue;
        }
        at = std::min(all.find('"', open + 1), all.size());
        const std::string_view value = all.substr(0, at);
        for (auto less = value.find('<', open); less != value.npos; less = value.find('<', done))
        {
            result.append(all, done, less - done).append("&lt;");
            done = less + 1;
        }
        ++at;
    }
    if (done == 0)
        return text;
    return result.append(all, done);
}

} // namespace

std::vector<MaterialX::InputPtr> fileInputs(const MaterialX::ConstElementPtr& root)
{
    std::vector<MaterialX::InputPtr> inputs;
    // The next one is the last; a stack of its own, since documents may be nested deeply.
    std::vector<MaterialX::Element*> waiting = {
        std::const_pointer_cast<MaterialX::Element>(root).get()};
    while (!waiting.empty())
    {
        MaterialX::Element* const element = waiting.back();
        waiting.pop_back();
        if (namesFile(*element))
            if (MaterialX::InputPtr input = element->asA<MaterialX::Input>())
                inputs.push_back(std::move(input));
        for (const MaterialX::ElementPtr& child : element->getChildren() | std::views::reverse)
            waiting.push_back(child.get());
    }
    return inputs;
}

std::string documentToXml(const MaterialX::DocumentPtr& document)
{
    if (std::optional<std::string> text = converter::plainXml(*document))
        return *std::move(text);
    return escapeAttributes(MaterialX::writeToXmlString(document));
}

std::string otherAssetOf(const std::filesystem::path& file, const std::string& asset)
{
    constexpr std::string_view attribute = "vyr_asset";
    std::ifstream stream;
    if (base::isFile(file))
        stream.open(file, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(stream),
                           std::istreambuf_iterator<char>()};
    const std::string own = base::xmlText(asset);
    // Mostly it is its own, without characters that are escaped, and then nothing has to be parsed.
    if (text.find(attribute) == text.npos ||
        text.find(std::string(attribute) + "=\"" + own + "\"") != text.npos)
        return {};
    const MaterialX::DocumentPtr document = MaterialX::createDocument();
    std::string other;
    try
    {
        MaterialX::XmlReadOptions options;
        options.readXIncludeFunction = nullptr;
        MaterialX::readFromXmlString(document, text, MaterialX::FileSearchPath(), &options);
    }
    catch (const MaterialX::Exception&)
    {
        return {};
    }
    for (const MaterialX::ElementPtr& element : document->getChildren())
    {
        const std::string& found = element->getAttribute(std::string(attribute));
        if (found == own && !own.empty())
            return {};
        other = found.empty() ? other : found;
    }
    return other;
}

void writeDocumentFile(const MaterialX::DocumentPtr& document, const std::filesystem::path& file)
{
    writeFileAtomically(file, documentToXml(document));
}

void writeFileAtomically(const std::filesystem::path& file, std::string_view bytes)
{
    if (const std::error_code error = base::writeFile(file, bytes).error)
        throw std::filesystem::filesystem_error("cannot write", file, error);
}

} // namespace vyr::MaterialTranslation
