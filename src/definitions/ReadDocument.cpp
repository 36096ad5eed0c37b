#include "definitions/Checks.h"

#include <fstream>
#include <iterator>
#include <string_view>

#include <MaterialXFormat/XmlIo.h>
#include <fmt/format.h>

#include "base/Paths.h"
#include "base/Text.h"

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
    const auto [line, column] = base::lineColumnOf(content, offset);
    return fmt::format("line {}, column {}", line, column);
}

/// MaterialX says "XML parse error (<reason> at character <offset>)".
std::string parseFailure(std::string_view text, std::string_view content)
{
    constexpr std::string_view opening = "XML parse error (";
    constexpr std::string_view marker = " at character ";
    const std::size_t at = text.rfind(marker);
    if (!text.starts_with(opening) || at == text.npos)
        return std::string(text);
    const std::size_t number = at + marker.size();
    const auto offset =
        base::numberFromText<std::size_t>(text.substr(number, text.rfind(')') - number));
    return fmt::format("{}: {}", lineAndColumn(content, offset.value_or(0)),
                       text.substr(opening.size(), at - opening.size()));
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
