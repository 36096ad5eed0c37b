#include "Loading.h"

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "JsonReaders.h"
#include "base/Paths.h"

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

/// Appends the bytes of a file to the text.
/// @return why not; empty when it has them.
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

/// Calls `read(item, pointer)` with each item of an array member, if there is one.
template <class Read>
void forEachItem(ObjectReader& object, std::string_view key, Report& report, Read read)
{
    const auto list = object.find(key);
    if (!list)
        return;
    if (list->kind() != JsonValue::Kind::Array)
        return report.error(*list, "expected an array");
    std::size_t index = 0;
    for (const JsonValue item : list->items())
        read(item, '/' + std::string(key) + '/' + std::to_string(index++));
}

void readContent(ObjectReader& object, FileContext& file, FileContent& content)
{
    forEachItem(object, "materials", file.report,
                [&](JsonValue value, const std::string& pointer)
                {
                    const Asset* asset = readAsset(value, pointer, file);
                    if (!asset)
                        return;
                    content.materials.push_back({asset, std::string(asset->content().id),
                                                 std::string(asset->content().definition.name()),
                                                 file.report.file(), pointer});
                });
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

FileContent readAssetFile(Loading& loading, std::size_t index, Report& report,
                          const std::vector<std::string>& programFolders)
{
    FileContent content;
    if (std::string why = readBytes(base::pathFromUtf8(report.file()), report.text()); !why.empty())
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
    ImageFinder images(loading.folders, folderChain(report.file(), folders, programFolders));
    FileContext file{loading, index, report, images};
    readContent(object, file, content);
    object.reportUnknownKeys();
    return content;
}

} // namespace vyr::assetlib
