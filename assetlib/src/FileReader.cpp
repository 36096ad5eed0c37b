#include "FileReader.h"

#include <filesystem>

#include "AssetReader.h"
#include "Fields.h"
#include "FileText.h"
#include "OverlayReader.h"
#include "Paths.h"

namespace vyr::assetlib
{

namespace fs = std::filesystem;

namespace
{

constexpr double formatVersion = 1.0;

/// Whether the file says that it has the format that is read here.
bool hasKnownVersion(ObjectReader& object)
{
    const JsonNode* version = object.require("assetLibrary");
    if (!version)
        return object.isObject();
    if (version->kind() == JsonNode::Kind::Number && version->number() == formatVersion)
        return true;
    object.report().error(object.at("assetLibrary"), "expected 1, the version of the format");
    return false;
}

/// Calls `read` with each item of an array member, if there is one.
template <class Read>
void forEachItem(ObjectReader& object, std::string_view key, Read read)
{
    const JsonNode* node = object.find(key);
    if (!node)
        return;
    const Place place = object.at(key);
    if (node->kind() != JsonNode::Kind::Array)
        return object.report().error(place, "expected an array");
    for (std::size_t i = 0; i < node->items().size(); ++i)
        read(node->items()[i], place.item(i));
}

/// The own folder of a file, its texture folders, and those of the program.
std::vector<fs::path> folderChain(const std::string& file,
                                  const std::vector<std::string_view>& ofFile,
                                  const std::vector<std::string>& ofProgram)
{
    const fs::path own = tidyAbsolute(pathOf(file)).parent_path();
    std::vector<fs::path> chain = {own};
    for (const std::string_view folder : ofFile)
        chain.push_back(tidyAbsolute(own / pathOf(folder)));
    for (const std::string& folder : ofProgram)
        chain.push_back(tidyAbsolute(pathOf(folder)));
    return chain;
}

Material materialOf(const Asset& asset, const Place& place, const std::string& file)
{
    const AssetContent& content = asset.content();
    return {&asset, std::string(content.id), std::string(content.definition.name()), file,
            place.pointer()};
}

} // namespace

FileContent readAssetFile(Loading& loading, std::size_t index, Report& report,
                          const std::vector<std::string>& programFolders)
{
    FileContent content;
    std::optional<std::string> text = readFile(report);
    if (!text)
        return content;
    const JsonDocument document(*text, loading.store.arena(), report);
    if (!document.isWhole())
        return content;
    const Place root;
    ObjectReader object(document.root(), root, report);
    if (!hasKnownVersion(object))
        return content;
    content.isKnown = true;

    object.find("$schema");
    std::vector<std::string_view> folders;
    if (const JsonNode* paths = object.find("texturePaths"))
        folders = readTexts(*paths, object.at("texturePaths"), report);
    ImageFinder images(loading.folders, folderChain(report.file(), folders, programFolders));
    FileScope scope{loading, index, report, images};
    forEachItem(object, "materials",
                [&](const JsonNode& node, const Place& place)
                {
                    if (const Asset* asset = readAsset(node, place, scope))
                        content.materials.push_back(materialOf(*asset, place, report.file()));
                });
    forEachItem(object, "textures",
                [&](const JsonNode& node, const Place& place) { readAsset(node, place, scope); });
    forEachItem(object, "overlays",
                [&](const JsonNode& node, const Place& place)
                {
                    if (auto overlay = readOverlay(node, place, scope))
                        content.overlays.push_back(std::move(*overlay));
                });
    object.reportUnknownKeys();
    return content;
}

} // namespace vyr::assetlib
