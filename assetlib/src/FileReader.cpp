#include "Loading.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <system_error>
#include <utility>

#include "JsonReaders.h"
#include "base/Paths.h"
#include "base/SideBySide.h"

namespace vyr::assetlib
{

namespace fs = std::filesystem;

namespace
{

constexpr double formatVersion = 1.0;

/// 1 GiB: keeps a mistaken device or disk image from filling the memory.
constexpr std::size_t largestFile = std::size_t{1} << 30;

/// Pipes are files too: what can be opened is read.
std::string whyNoFile(const fs::path& path)
{
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (status.type() == fs::file_type::not_found)
        return "no such file";
    if (status.type() == fs::file_type::directory)
        return "expected a file, this is a folder";
    return error ? "cannot be read: " + error.message() : std::string();
}

std::string lastError()
{
    return errno != 0 ? ": " + std::generic_category().message(errno) : std::string();
}

/// Appends the bytes to the text.
/// @return why not; empty when it has them.
std::string readBytes(std::istream& stream, std::string& text)
{
    std::vector<char> block(std::size_t{1} << 16);
    while (stream && text.size() <= largestFile)
    {
        stream.read(block.data(), static_cast<std::streamsize>(block.size()));
        text.append(block.data(), static_cast<std::size_t>(stream.gcount()));
    }
    if (stream.bad())
        return "cannot be read" + lastError();
    if (text.size() > largestFile)
        return "expected at most 1 GiB";
    return text.empty() ? "the file is empty" : "";
}

std::string readBytes(const fs::path& path, std::string& text)
{
    if (std::string why = whyNoFile(path); !why.empty())
        return why;
    errno = 0;
    std::ifstream stream(path, std::ios::binary);
    if (!stream)
        return "cannot be read" + lastError();
    // Pipes and devices have no size, and a file may grow while it is read.
    std::error_code unknownSize;
    const std::uintmax_t size = fs::file_size(path, unknownSize);
    if (!unknownSize && size <= largestFile)
        text.reserve(static_cast<std::size_t>(size));
    return readBytes(stream, text);
}

/// Whether the file says that it has the format that is read here.
bool hasKnownVersion(ObjectReader& object, Report& report)
{
    const auto version = object.require("assetLibrary");
    if (!version)
        return object.isObject();
    if (version->kind() == JsonValue::Kind::Number && version->number() == formatVersion)
        return true;
    report.error(*version, "expected 1, the version of the format");
    return false;
}

/// The own folder of a file, its texture folders, and those of the program.
std::vector<fs::path> folderChain(const std::string& file,
                                  const std::vector<std::string_view>& ofFile,
                                  const std::vector<std::string>& ofProgram)
{
    const fs::path own = base::tidyAbsolute(base::pathFromUtf8(file)).parent_path();
    std::vector<fs::path> chain = {own};
    for (const std::string_view folder : ofFile)
        chain.push_back(base::tidyAbsolute(own / base::pathFromUtf8(folder)));
    for (const std::string& folder : ofProgram)
        chain.push_back(base::tidyAbsolute(base::pathFromUtf8(folder)));
    return chain;
}

/// An array member, if there is one.
std::optional<JsonValue> findArray(ObjectReader& object, std::string_view key, Report& report)
{
    const auto list = object.find(key);
    if (!list || list->kind() == JsonValue::Kind::Array)
        return list;
    report.error(*list, "expected an array");
    return std::nullopt;
}

/// Calls `read(item, pointer)` with each item of an array member, if there is one.
template <class Read>
void forEachItem(ObjectReader& object, std::string_view key, Report& report, Read read)
{
    const auto list = findArray(object, key, report);
    if (!list)
        return;
    std::size_t index = 0;
    for (const JsonValue item : list->items())
        read(item, '/' + std::string(key) + '/' + std::to_string(index++));
}

void readMaterial(JsonValue value, std::size_t index, FileContext& file,
                  std::vector<Material>& materials)
{
    const std::string pointer = "/materials/" + std::to_string(index);
    const Asset* asset = readAsset(value, pointer, file);
    if (!asset)
        return;
    materials.push_back({asset, std::string(asset->content().id),
                         std::string(asset->content().definition.name()), file.report.file(),
                         pointer});
}

/// Some materials of a file, read by one thread, with all that it writes to.
struct Part
{
    Part(Store& store, const FileContext& file, JsonItems::Iterator firstMaterial,
         std::size_t firstIndex)
        : loading{store.addShelf()}, report(file.report.forPart()),
          images(loading.folders, file.images.folders()), first(firstMaterial), index(firstIndex)
    {
    }

    void read(std::size_t fileIndex, std::size_t count)
    {
        FileContext file{loading, fileIndex, report, images};
        materials.reserve(count);
        for (const std::size_t end = index + count; index < end; ++index, ++first)
            readMaterial(*first, index, file, materials);
    }

    Loading loading;
    Report report;
    ImageFinder images;
    JsonItems::Iterator first;
    std::size_t index;
    std::vector<Material> materials = {};
};

/// @param threads that may read at once
std::vector<Material> readMaterials(JsonItems items, FileContext& file, Store& store,
                                    unsigned threads)
{
    // With fewer a thread costs more than it saves.
    constexpr std::size_t fewest = 500;
    const std::size_t count =
        std::clamp<std::size_t>(items.size() / fewest, 1, std::max(threads, 1U));
    const auto startOf = [&](std::size_t part) { return items.size() * part / count; };
    std::deque<Part> parts;
    auto item = items.begin();
    for (std::size_t index = 0; parts.size() < count; ++index)
    {
        if (index == startOf(parts.size()))
            parts.emplace_back(store, file, item, index);
        if (parts.size() < count)
            ++item;
    }
    base::sideBySide(count, [&](std::size_t part)
                     { parts[part].read(file.index, startOf(part + 1) - startOf(part)); });

    std::vector<Material> materials;
    for (Part& part : parts)
    {
        moveBehind(materials, std::move(part.materials));
        file.loading.append(std::move(part.loading));
        file.report.take(std::move(part.report));
    }
    return materials;
}

void readContent(ObjectReader& object, FileContext& file, FileContent& content, Store& store,
                 unsigned threads)
{
    if (const auto list = findArray(object, "materials", file.report))
        content.materials = readMaterials(list->items(), file, store, threads);
    forEachItem(object, "textures", file.report, [&](JsonValue value, const std::string& pointer)
                { readAsset(value, pointer, file); });
    forEachItem(object, "overlays", file.report,
                [&](JsonValue value, const std::string& pointer)
                {
                    if (auto overlay = readOverlay(value, pointer, file))
                        content.overlays.push_back(std::move(*overlay));
                });
}

} // namespace

const std::string* FileContext::findImage(JsonValue value, std::string_view asset,
                                          std::string_view property) const
{
    const auto reference = readText(value, report);
    if (!reference)
        return nullptr;
    const ImageFinder::Image& image = images.find(std::string(*reference));
    if (!image.remark.empty())
        report.warning(value, asset, property, image.remark);
    return &image.path;
}

void Loading::append(Loading&& part)
{
    moveBehind(assets, std::move(part.assets));
    moveBehind(origins, std::move(part.origins));
    moveBehind(connections, std::move(part.connections));
}

FileContent readAssetFile(Store& store, Loading& loading, std::size_t index, Report& report,
                          const LoadOptions& options)
{
    FileContent content;
    const bool isInput = options.standardInput && report.file() == "-";
    std::string why = isInput ? readBytes(std::cin, report.text())
                              : readBytes(base::pathFromUtf8(report.file()), report.text());
    if (!why.empty())
    {
        report.fileError(std::move(why));
        return content;
    }
    const JsonDocument document(report);
    if (!document.isWhole())
        return content;
    ObjectReader object(document.root(), report);
    if (!hasKnownVersion(object, report))
        return content;
    content.isKnown = true;

    object.find("$schema");
    std::vector<std::string_view> folders;
    if (const auto paths = object.find("texturePaths"))
        folders = readTexts(*paths, report);
    ImageFinder images(loading.folders, folderChain(report.file(), folders, options.texturePaths));
    FileContext file{loading, index, report, images};
    readContent(object, file, content, store, options.threads);
    object.reportUnknownKeys();
    return content;
}

} // namespace vyr::assetlib
