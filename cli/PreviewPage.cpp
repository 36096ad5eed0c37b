#include "PreviewPage.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <span>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

#include <yyjson.h>

#include <MaterialTranslation/Definitions.h>

#include "Installed.h"
#include "Json.h"
#include "PagePieces.h"
#include "base/Paths.h"
#include "base/Text.h"
#include "base/WriteFile.h"
#include "batch/Output.h"
#include "batch/Refusal.h"

namespace vyr::cli
{
namespace
{

namespace fs = std::filesystem;

fs::path imageFile(const PageItem& item, const std::string& image)
{
    return item.document.parent_path() / base::pathFromUtf8(image);
}

/// The categories of the kvor nodes in a document, each once.
std::string nodesOf(std::string_view document)
{
    constexpr std::string_view mark = "<kvor:";
    std::set<std::string_view> nodes;
    for (std::size_t at = document.find(mark); at != document.npos;
         at = document.find(mark, at + 1))
        nodes.insert(document.substr(at + 1, document.find_first_of(" />", at) - at - 1));
    std::string text;
    for (const std::string_view node : nodes)
        text += (text.empty() ? "" : " ") + std::string(node);
    return text;
}

/// Adds an item to the list, and its document to the pieces.
void addItem(const JsonNode& list, const PageItem& item, const ImagePieces& images, Pieces& pieces)
{
    const std::string text = item.document.empty() ? std::string() : textOfFile(item.document);
    std::vector<std::string> messages = item.messages;
    const JsonDocument content;
    content.root().add("text", text);
    const JsonNode pairs = content.root().addList("images");
    for (const std::string& image : item.images)
    {
        const auto& [name, problem] = images[imageFile(item, image)];
        if (!problem.empty())
            messages.push_back(problem);
        if (!name.empty())
        {
            const JsonNode pair = pairs.addObject();
            pair.add("name", image);
            pair.add("piece", name);
        }
    }

    const JsonNode entry = list.addObject();
    const JsonDocument shown;
    for (const JsonNode& node : {entry, shown.root()})
    {
        node.add("name", item.name);
        node.add("id", item.id);
        node.add("schema", item.schema);
        node.add("shape", item.shape);
        node.add("file", item.file);
        node.add("nodes", nodesOf(text));
        node.addFlag("failed", item.document.empty());
        node.add("messages", messages);
    }
    const std::string body = content.text();
    const std::string piece = keyOf('m', shown.text() + body);
    entry.add("piece", piece);
    if (!pieces.has(piece))
        pieces.write(piece, content);
    pieces.keep(piece);
}

void writeDefinitions(const Pieces& pieces)
{
    const JsonDocument definitions;
    const JsonNode files = definitions.root().addList("files");
    std::map<std::string, fs::path> sorted;
    for (const fs::directory_entry& entry :
         fs::directory_iterator(MaterialTranslation::definitionFolders().kvor))
        if (entry.path().extension() == ".mtlx")
            sorted.emplace(base::utf8FromPath(entry.path().filename()), entry.path());
    for (const auto& [name, file] : sorted)
    {
        const JsonNode object = files.addObject();
        object.add("name", name);
        object.add("text", textOfFile(file));
    }
    pieces.write("definitions", definitions);
}

void writeVersion(const Pieces& pieces, const std::string& version, const std::string& problem)
{
    const JsonDocument document;
    document.root().add("version", version);
    document.root().add("problem", problem);
    pieces.write("version", document);
}

std::string textAt(yyjson_val* object, const char* key)
{
    yyjson_val* const value = yyjson_obj_get(object, key);
    return yyjson_is_str(value) ? std::string(yyjson_get_str(value), yyjson_get_len(value))
                                : std::string();
}

PageItem itemOf(yyjson_val* entry)
{
    PageItem item;
    item.name = textAt(entry, "name");
    const std::string type = textAt(entry, "type");
    item.id = textAt(entry, type.empty() ? "id" : "overlay");
    item.schema = type.empty() ? textAt(entry, "schema") : type;
    item.shape = type.empty() ? "material" : type;
    item.file = textAt(entry, "file");
    if (const std::string document = textAt(entry, "document"); !document.empty())
        item.document = base::tidyAbsolute(base::pathFromUtf8(document));
    std::size_t index = 0;
    std::size_t count = 0;
    yyjson_val* value = nullptr;
    yyjson_arr_foreach(yyjson_obj_get(entry, "textures"), index, count, value)
        item.images.emplace_back(yyjson_get_str(value), yyjson_get_len(value));
    yyjson_arr_foreach(yyjson_obj_get(entry, "warnings"), index, count, value)
    {
        const std::string property = textAt(value, "property");
        item.messages.push_back(property.empty() ? textAt(value, "text")
                                                 : property + ": " + textAt(value, "text"));
    }
    if (const std::string message = textAt(entry, "message"); !message.empty())
        item.messages.push_back(message);
    return item;
}

/// What every page has, below the folder of the program's data, and where it goes.
constexpr std::array<std::pair<const char*, const char*>, 6> pageFiles = {{
    {"page/pieces.js", "viewer/pieces.js"},
    {"page/card.js", "viewer/card.js"},
    {"page/pictures.js", "viewer/pictures.js"},
    {"page/page.js", "viewer/page.js"},
    {"page/page.css", "viewer/page.css"},
    {"page/index.html", "index.html"},
}};

/// What draws; a program that was built without it shows everything else.
constexpr std::array<std::pair<const char*, const char*>, 2> painterFiles = {{
    {"painter/painter.js", "viewer/painter.js"},
    {"painter/licenses.txt", "viewer/licenses.txt"},
}};

constexpr std::string_view pageMark = "src=\"viewer/page.js\"";

} // namespace

void checkCanHoldPage(const fs::path& folder)
{
    if (const fs::path index = folder / "index.html";
        base::isFile(index) && textOfFile(index).find(pageMark) == std::string::npos)
        throw batch::Refusal(base::utf8FromPath(index) +
                             " is not of this program and is not replaced");
    for (const auto& [name, place] : pageFiles)
        if (!installedFile(name))
            throw batch::Refusal(std::string("the page is not installed: there is no "
                                             "share/vyr_mtlx_converter/") +
                                 name + " beside the program");
}

bool canDraw()
{
    return installedFile(painterFiles.front().first).has_value();
}

void writeViewer(const fs::path& folder)
{
    const auto copy = [&](const std::pair<const char*, const char*>& entry)
    {
        const auto& [name, place] = entry;
        const std::optional<fs::path> file = installedFile(name);
        const fs::path target = folder / place;
        if (const std::error_code error =
                file ? base::copyFile(*file, target)
                     : std::make_error_code(std::errc::no_such_file_or_directory))
            throw std::runtime_error(
                batch::writeFailure(base::utf8FromPath(target), error.message()));
    };
    makeFolder(folder / "viewer");
    if (canDraw())
        std::ranges::for_each(painterFiles, copy);
    std::ranges::for_each(pageFiles, copy);
}

std::vector<PageItem> itemsOfReport(const fs::path& report)
{
    const std::string text = textOfFile(report);
    const std::unique_ptr<yyjson_doc, void (*)(yyjson_doc*)> document(
        yyjson_read(text.data(), text.size(), 0), yyjson_doc_free);
    if (!document)
        throw std::runtime_error(base::utf8FromPath(report) + ": no report of a conversion");
    std::vector<PageItem> items;
    for (const char* list : {"materials", "overlays"})
    {
        std::size_t index = 0;
        std::size_t count = 0;
        yyjson_val* entry = nullptr;
        yyjson_arr_foreach(yyjson_obj_get(yyjson_doc_get_root(document.get()), list), index, count,
                           entry) items.push_back(itemOf(entry));
    }
    return items;
}

void writePieces(const fs::path& folder, const std::vector<PageItem>& items,
                 const PageSettings& settings)
{
    Pieces pieces(folder);
    ImagePieces images(pieces, settings.limits);
    for (const PageItem& item : items)
        for (const std::string& image : item.images)
            images.add(imageFile(item, image));
    images.make(settings.workers);
    writeDefinitions(pieces);

    const JsonDocument list;
    list.root().add("about", settings.about);
    list.root().addFlag("watch", settings.watch);
    list.root().addFlag("draws", canDraw());
    const JsonNode entries = list.root().addList("items");
    for (const PageItem& item : items)
        addItem(entries, item, images, pieces);
    const std::string version = keyOf('v', list.text());
    list.root().add("version", version);
    pieces.write("list", list);
    // Last: a page that watches loads the others when it changes.
    writeVersion(pieces, version, {});
    pieces.prune();
}

void tellPage(const fs::path& folder, const std::string& problem)
{
    writeVersion(Pieces(folder), keyOf('v', problem), problem);
}

} // namespace vyr::cli
