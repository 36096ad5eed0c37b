#include "definitions/ReadDocument.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <iterator>
#include <string_view>

#include <MaterialXFormat/XmlIo.h>

#include "base/Paths.h"

namespace vyr::MaterialTranslation::definitions
{

namespace fs = std::filesystem;
namespace mx = MaterialX;

namespace
{

std::string contentOf(const fs::path& file)
{
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (!fs::exists(status))
        throw UnreadableDocument("there is no such file");
    if (fs::is_directory(status))
        throw UnreadableDocument("it is a folder");
    std::ifstream stream(file, std::ios::binary);
    std::string content{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    if (!stream)
        throw UnreadableDocument("it cannot be read");
    return content;
}

std::string lineAndColumn(std::string_view content, std::size_t offset)
{
    const std::string_view before = content.substr(0, offset);
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const std::size_t lineEnd = before.rfind('\n');
    const std::size_t column =
        before.size() - (lineEnd == std::string_view::npos ? 0 : lineEnd + 1) + 1;
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

/// MaterialX says "XML parse error (<reason> at character <offset>)".
std::string parseFailure(std::string_view text, std::string_view content)
{
    constexpr std::string_view opening = "XML parse error (";
    constexpr std::string_view marker = " at character ";
    const std::size_t at = text.rfind(marker);
    std::size_t offset = 0;
    if (text.substr(0, opening.size()) != opening || at == std::string_view::npos)
        return std::string(text);
    const std::string_view number = text.substr(at + marker.size());
    std::from_chars(number.data(), number.data() + number.size(), offset);
    return lineAndColumn(content, std::min(offset, content.size())) + ": " +
           std::string(text.substr(opening.size(), at - opening.size()));
}

} // namespace

mx::DocumentPtr readDocument(const fs::path& file)
{
    const std::string content = contentOf(file);
    // MaterialX takes the content as a C string.
    if (const std::size_t zero = content.find('\0'); zero != std::string::npos)
        throw UnreadableDocument(lineAndColumn(content, zero) + ": a zero byte");
    const std::string name = base::utf8FromPath(file);
    mx::DocumentPtr document = mx::createDocument();
    document->setSourceUri(name);
    try
    {
        mx::readFromXmlString(document, content,
                              mx::FileSearchPath(mx::FilePath(name).getParentPath().asString()));
    }
    catch (const std::exception& error)
    {
        throw UnreadableDocument(parseFailure(error.what(), content));
    }
    return document;
}

} // namespace vyr::MaterialTranslation::definitions
