#include "EarlierRuns.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <system_error>
#include <utility>

#include <yyjson.h>

#include "CommandLine.h"
#include "Console.h"
#include "Json.h"
#include "base/Hash.h"
#include "base/Paths.h"
#include "base/Text.h"
#include "base/WriteFile.h"

namespace vyr::cli
{
namespace
{

namespace fs = std::filesystem;
using batch::OutputFolder;
using batch::WrittenDocument;
using batch::WrittenImage;

constexpr const char* listStart = ".vyr-mtlx-";

/// The way from the folder to the asset file; the same wherever both are moved to.
std::string wayTo(const std::string& file, const OutputFolder& folder)
{
    const fs::path place = batch::placeOf(base::pathFromUtf8(file));
    const fs::path way = place.lexically_relative(folder.canonical);
    return base::genericUtf8FromPath(way.empty() ? place : way);
}

/// Whether a text of a list names something in a folder, and nothing elsewhere.
bool isPlainName(const std::string& name)
{
    return !base::isUnsafeName(name) && base::lastComponent(name) == name;
}

bool isOrdinary(const fs::path& file)
{
    std::error_code error;
    return fs::is_regular_file(fs::symlink_status(file, error));
}

bool isThere(const fs::path& file)
{
    std::error_code error;
    return fs::exists(fs::symlink_status(file, error));
}

std::string textOf(yyjson_val* object, const char* key)
{
    yyjson_val* const value = yyjson_obj_get(object, key);
    return yyjson_is_str(value) ? std::string(yyjson_get_str(value), yyjson_get_len(value))
                                : std::string();
}

WrittenDocument documentOf(yyjson_val* entry)
{
    WrittenDocument document{textOf(entry, "hash"), {}};
    std::size_t index = 0;
    std::size_t count = 0;
    yyjson_val* image = nullptr;
    yyjson_arr_foreach(yyjson_obj_get(entry, "images"), index, count, image)
    {
        document.images.push_back({textOf(image, "file"), textOf(image, "hash"),
                                   yyjson_get_sint(yyjson_obj_get(image, "size")),
                                   yyjson_get_sint(yyjson_obj_get(image, "time"))});
    }
    return document;
}

} // namespace

EarlierRuns::EarlierRuns(const OutputFolder& folder, const char* things,
                         const std::vector<std::string>& files)
    : _folder(folder), _things(things)
{
    for (const std::string& file : files)
    {
        if (file == standardStream || _lists.contains(file))
            continue;
        const std::string hash = base::hashOf(_things + '\n' + wayTo(file, folder)).substr(0, 16);
        const fs::path place = folder.absolute / (listStart + hash + ".json");
        _lists[file] = {place, read(place)};
    }
}

EarlierRuns::Documents EarlierRuns::read(const fs::path& place)
{
    Documents documents;
    if (!isOrdinary(place))
        return documents;
    std::ifstream stream(place, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(stream),
                           std::istreambuf_iterator<char>()};
    const std::unique_ptr<yyjson_doc, decltype(&yyjson_doc_free)> json(
        yyjson_read(text.data(), text.size(), YYJSON_READ_NOFLAG), &yyjson_doc_free);
    std::size_t index = 0;
    std::size_t count = 0;
    yyjson_val* entry = nullptr;
    yyjson_arr_foreach(yyjson_obj_get(yyjson_doc_get_root(json.get()), "written"), index, count,
                       entry)
    {
        documents[textOf(entry, "name")] = documentOf(entry);
    }
    return documents;
}

void EarlierRuns::note(const std::string& file, const std::string& name, WrittenDocument document)
{
    if (const auto list = _lists.find(file); list != _lists.end())
        list->second.documents[name] = std::move(document);
}

bool EarlierRuns::isNamedElsewhere(const std::string& name)
{
    if (!_elsewhere)
    {
        _elsewhere.emplace();
        std::error_code error;
        for (fs::directory_iterator entry(_folder.absolute, error), end; !error && entry != end;
             entry.increment(error))
        {
            const bool isOwn = std::ranges::any_of(_lists, [&](const auto& list)
                                                   { return list.second.place == entry->path(); });
            if (!isOwn && base::utf8FromPath(entry->path().filename()).starts_with(listStart))
                for (const auto& [other, document] : read(entry->path()))
                    _elsewhere->insert(other);
        }
    }
    return _elsewhere->contains(name);
}

void EarlierRuns::remove(const std::string& name, const WrittenDocument& document,
                         const InUse& inUse, std::vector<std::string>& removed) const
{
    const auto take = [&](const fs::path& file)
    {
        std::error_code error;
        if (fs::remove(_folder.absolute / file, error))
            removed.push_back(base::utf8FromPath(_folder.shown / file));
        else if (error)
            complain("vyr-mtlx: cannot remove " + base::utf8FromPath(_folder.shown / file) + ": " +
                     error.message());
        return !error;
    };
    const fs::path file = batch::documentFile(name);
    if (isThere(_folder.absolute / file))
    {
        // A document that its user has made his own, and the images that it needs.
        if (!isOrdinary(_folder.absolute / file) ||
            base::hashOfFile(_folder.absolute / file) != document.hash)
            return complain("vyr-mtlx: " + base::utf8FromPath(_folder.shown / file) +
                            " was changed since it was written, and stays");
        if (!take(file))
            return;
    }
    const fs::path images = base::pathFromUtf8(name);
    std::error_code error;
    if (!fs::is_directory(fs::symlink_status(_folder.absolute / images, error)))
        return;
    for (const WrittenImage& image : document.images)
    {
        const fs::path place = images / base::pathFromUtf8(image.file);
        if (isPlainName(image.file) && image.isAt(_folder.absolute / place) &&
            !inUse(_folder.canonical / place))
            take(place);
    }
    fs::remove(_folder.absolute / images, error); // refuses when something is in it
}

std::vector<std::string> EarlierRuns::prune(const std::vector<std::string>& names,
                                            const InUse& inUse)
{
    // One file may have names that differ in case.
    std::map<std::string, std::string> kept;
    for (const std::string& name : names)
        kept.emplace(base::foldCase(name), name);
    const auto isKept = [&](const std::string& name)
    {
        const auto same = kept.find(base::foldCase(name));
        return same != kept.end() &&
               (same->second == name ||
                base::isSameFile(_folder.absolute / batch::documentFile(name),
                                 _folder.absolute / batch::documentFile(same->second)));
    };
    std::vector<std::string> removed;
    for (auto& [file, list] : _lists)
        std::erase_if(list.documents,
                      [&](const auto& entry)
                      {
                          const auto& [name, document] = entry;
                          if (isKept(name))
                              return false;
                          if (isPlainName(name) && !isNamedElsewhere(name))
                              remove(name, document, inUse, removed);
                          return true;
                      });
    return removed;
}

bool EarlierRuns::write() const
{
    bool isWritten = true;
    for (const auto& [file, list] : _lists)
    {
        std::error_code error;
        if (list.documents.empty())
        {
            if (isOrdinary(list.place))
                fs::remove(list.place, error);
            continue;
        }
        const JsonDocument json;
        const JsonNode written = json.root().addList("written");
        for (const auto& [name, document] : list.documents)
        {
            const JsonNode entry = written.addObject();
            entry.add("name", name);
            entry.add("hash", document.hash);
            const JsonNode images = entry.addList("images");
            for (const WrittenImage& image : document.images)
            {
                const JsonNode object = images.addObject();
                object.add("file", image.file);
                if (!image.hash.empty())
                    object.add("hash", image.hash);
                else
                {
                    object.addCount("size", image.size);
                    object.addCount("time", image.time);
                }
            }
        }
        error = base::writeFile(list.place, json.text()).error;
        if (error)
            complain("vyr-mtlx: " +
                     batch::writeFailure(base::utf8FromPath(list.place), error.message()));
        isWritten = isWritten && !error;
    }
    return isWritten;
}

} // namespace vyr::cli
