#include "ImagePaths.h"

#include <algorithm>
#include <filesystem>
#include <optional>

namespace vyr::cli
{
namespace
{

namespace fs = std::filesystem;

template <typename Visitor>
void forEachImage(MaterialX::ConstElementPtr root, const Visitor& visit)
{
    for (const MaterialX::ElementPtr& element : root->traverseTree())
    {
        // Few elements are images; what an element is costs more to ask than what it has.
        if (element->getAttribute(MaterialX::TypedElement::TYPE_ATTRIBUTE) !=
            MaterialX::FILENAME_TYPE_STRING)
            continue;
        const MaterialX::InputPtr input = element->asA<MaterialX::Input>();
        if (input && !input->getValueString().empty())
            visit(*input);
    }
}

/// The way from a folder to a file below it; nothing for a file elsewhere. Both absolute.
std::optional<fs::path> wayBelow(const fs::path& folder, const fs::path& file)
{
    const fs::path way = file.lexically_relative(folder);
    if (way.empty() || way == "." || *way.begin() == "..")
        return std::nullopt;
    return way;
}

std::optional<fs::path> relativePath(const fs::path& file, const OutputFolder& folder)
{
    if (!file.is_absolute())
        return std::nullopt;
    // ".." after a symbolic link leads elsewhere than its text says.
    const bool literal = std::ranges::find(file, fs::path("..")) == file.end();
    if (const auto way =
            literal ? wayBelow(folder.absolute, file.lexically_normal()) : std::nullopt)
        return way;
    return wayBelow(folder.canonical, placeOf(file));
}

} // namespace

std::vector<std::string> imagePaths(const MaterialX::Document& document)
{
    std::vector<std::string> paths;
    forEachImage(document.getSelf(),
                 [&paths](const MaterialX::Input& input)
                 {
                     const std::string& path = input.getValueString();
                     if (std::ranges::find(paths, path) == paths.end())
                         paths.push_back(path);
                 });
    return paths;
}

void makeImagePathsRelative(MaterialX::Document& document, const OutputFolder& folder)
{
    forEachImage(document.getSelf(),
                 [&folder](MaterialX::Input& input)
                 {
                     const fs::path file = pathFromUtf8(input.getValueString());
                     if (const std::optional<fs::path> way = relativePath(file, folder))
                     {
                         const std::u8string text = way->generic_u8string();
                         input.setValueString(std::string(text.begin(), text.end()));
                     }
                 });
}

} // namespace vyr::cli
