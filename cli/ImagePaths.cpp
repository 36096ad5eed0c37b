#include "ImagePaths.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <utility>

namespace vyr::cli
{
namespace
{

namespace fs = std::filesystem;

void collectImageInputs(const MaterialX::Element& parent, ImageInputs& inputs)
{
    for (const MaterialX::ElementPtr& element : parent.getChildren())
    {
        // Few inputs are images; what an element is costs more to ask than what it has.
        const bool isImage =
            element->getAttribute(MaterialX::TypedElement::TYPE_ATTRIBUTE) ==
                MaterialX::FILENAME_TYPE_STRING &&
            !element->getAttribute(MaterialX::ValueElement::VALUE_ATTRIBUTE).empty();
        if (MaterialX::InputPtr input = isImage ? element->asA<MaterialX::Input>() : nullptr)
            inputs.push_back(std::move(input));
        collectImageInputs(*element, inputs);
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

ImageInputs imageInputs(const MaterialX::Document& document)
{
    ImageInputs inputs;
    collectImageInputs(document, inputs);
    return inputs;
}

std::vector<std::string> imagePaths(const ImageInputs& inputs)
{
    std::vector<std::string> paths;
    for (const MaterialX::InputPtr& input : inputs)
    {
        const std::string& path = input->getValueString();
        if (std::ranges::find(paths, path) == paths.end())
            paths.push_back(path);
    }
    return paths;
}

void makeImagePathsRelative(const ImageInputs& inputs, const OutputFolder& folder)
{
    for (const MaterialX::InputPtr& input : inputs)
    {
        const fs::path file = pathFromUtf8(input->getValueString());
        if (const std::optional<fs::path> way = relativePath(file, folder))
        {
            const std::u8string text = way->generic_u8string();
            input->setValueString(std::string(text.begin(), text.end()));
        }
    }
}

} // namespace vyr::cli
