#include "definitions/FileCheck.h"

#include "base/Paths.h"

namespace vyr::MaterialTranslation::definitions
{

namespace fs = std::filesystem;
namespace mx = MaterialX;

namespace
{

bool isFile(const std::string& path)
{
    std::error_code error;
    const fs::file_status status = fs::status(base::pathFromUtf8(path), error);
    return fs::exists(status) && !fs::is_directory(status);
}

/// An absolute name has no prefix: MaterialX leaves it out, too.
std::string resolvedName(const mx::ValueElement& value)
{
    const std::string& name = value.getValueString();
    const std::string& prefix =
        mx::FilePath(name).isAbsolute() ? mx::EMPTY_STRING : value.getActiveFilePrefix();
    // Looking tokens up costs more than all other checks of a document.
    if (name.find('[') == std::string::npos)
        return prefix + name;
    const mx::StringResolverPtr resolver = value.createStringResolver();
    resolver->setFilePrefix(prefix);
    return value.getResolvedValueString(resolver);
}

} // namespace

mx::FileSearchPath searchPathOf(const mx::Document& document, const std::vector<fs::path>& folders)
{
    mx::FileSearchPath path;
    if (document.hasSourceUri())
        path.append(mx::FilePath(document.getSourceUri()).getParentPath());
    for (const fs::path& folder : folders)
        path.append(mx::FilePath(base::utf8FromPath(folder)));
    return path;
}

void checkFile(const mx::ValueElement& value, const mx::FileSearchPath& searchPath,
               std::vector<ValidationMessage>& messages)
{
    const std::string name = resolvedName(value);
    if (name.find_first_of("<{") != std::string::npos)
        return;
    if (!isFile(searchPath.find(mx::FilePath(name)).asString()))
        messages.push_back({value.getNamePath(), ValidationCode::FileMissing,
                            "there is no file \"" + name + "\""});
}

} // namespace vyr::MaterialTranslation::definitions
