#include "textures/Translation.h"

#include <algorithm>
#include <mutex>
#include <new>
#include <set>
#include <utility>

#include <MaterialTranslation/Bakes.h>

#include "base/Paths.h"

namespace vyr::MaterialTranslation::textures
{

namespace fs = std::filesystem;

namespace
{

/// While one translation looks whether a file is still its own and removes it, no other may put one there.
std::mutex& placesMutex()
{
    // Never destroyed: threads may end after the program's static objects.
    static std::mutex& mutex = *new std::mutex;
    return mutex;
}

/// All that have files, of every thread; behind the mutex.
std::set<MaterialFiles*>& withFiles()
{
    static std::set<MaterialFiles*>& all = *new std::set<MaterialFiles*>;
    return all;
}

std::unique_ptr<MaterialFiles>& lastFiles()
{
    thread_local std::unique_ptr<MaterialFiles> files;
    return files;
}

BakeSettings& threadSettings()
{
    thread_local BakeSettings settings;
    return settings;
}

} // namespace

MaterialFiles::MaterialFiles(const std::string& outputDirectory, const std::string& material,
                             base::SameBytes same)
    : _outputDirectory(outputDirectory), _material(material), _same(same)
{
}

const fs::path& MaterialFiles::folder() const
{
    if (_folder.empty())
        _folder =
            fs::absolute(base::pathFromUtf8(_outputDirectory)) / base::pathFromUtf8(_material);
    return _folder;
}

MaterialFiles::~MaterialFiles()
{
    try
    {
        if (!_kept)
            discard();
    }
    catch (const std::bad_alloc&)
    {
        // There was no memory for the folder's name: it stays, with nothing in it.
    }
    const std::lock_guard lock(placesMutex());
    withFiles().erase(this);
}

void MaterialFiles::makeFolder()
{
    std::error_code error;
    const fs::file_status status = fs::symlink_status(folder(), error);
    if (fs::is_directory(status))
        return;
    if (fs::exists(status))
        error = std::make_error_code(std::errc::not_a_directory);
    else if (const bool made = fs::create_directory(folder(), error); !error)
    {
        _madeFolder = _madeFolder || made;
        return;
    }
    throw fs::filesystem_error("create_directory", folder(), error);
}

fs::path MaterialFiles::freePlace(const std::string& name,
                                  const std::vector<std::string>& others) const
{
    std::set<std::string> taken;
    for (const std::string& other : others)
        for (std::string& key : base::placeKeys(base::pathFromUtf8(other)))
            taken.insert(std::move(key));
    const auto placeOf = [&](const std::string& text)
    { return folder() / base::pathFromUtf8(text); };
    const auto isFree = [&](const std::string& candidate)
    {
        const fs::path place = placeOf(candidate);
        return !isOwn(place) && !taken.contains(base::placeKey(place));
    };
    return placeOf(base::firstFreeName(name, isFree));
}

void MaterialFiles::add(const fs::path& place, std::string_view bytes)
{
    constexpr int mostAttempts = 100;
    std::error_code error;
    for (int attempt = 0; attempt < mostAttempts; ++attempt)
    {
        makeFolder();
        File file;
        file.place = place;
        error = file.content.write(place, bytes);
        if (!error)
        {
            const std::lock_guard lock(placesMutex());
            withFiles().insert(this);
            _files.push_back(std::move(file));
            return;
        }
        // Another translation of this name may just have removed the folder that it had made.
        if (error != std::errc::no_such_file_or_directory)
            break;
    }
    throw fs::filesystem_error("write", place, error);
}

void MaterialFiles::addKept(const fs::path& place)
{
    const std::lock_guard lock(placesMutex());
    withFiles().insert(this);
    File& file = _files.emplace_back();
    file.place = place;
    file.isKept = true;
    file.published = place;
    shareWithOthers(place);
}

void MaterialFiles::shareWithOthers(const fs::path& place) const
{
    for (MaterialFiles* const other : withFiles())
        if (other != this)
            for (File& file : other->_files)
                file.isShared = file.isShared || file.published == place;
}

void MaterialFiles::prepare(const fs::path& place, const fs::path& destination)
{
    const auto file = std::ranges::find(_files, place, &File::place);
    if (file == _files.end() || !file->isKept || place == destination)
        return;
    if (const std::error_code error = file->content.copy(place, destination))
        throw fs::filesystem_error("write", destination, error);
    file->published.clear();
}

MaterialImages MaterialFiles::images() const
{
    MaterialImages images{{}, {}, _gathered};
    for (const File& file : _files)
        if (!file.published.empty())
            (file.isKept ? images.kept : images.baked).push_back(file.published);
    return images;
}

void MaterialFiles::drop(const fs::path& place)
{
    std::erase_if(_files, [&](const File& file) { return file.place == place; });
}

void MaterialFiles::publish(const fs::path& place, const fs::path& destination)
{
    const std::lock_guard lock(placesMutex());
    for (File& file : _files)
    {
        if (file.place != place || !file.published.empty())
            continue;
        if (const std::error_code error = file.content.publish(destination, _same))
            throw fs::filesystem_error("rename", destination, error);
        file.published = destination;
        shareWithOthers(destination);
    }
}

void MaterialFiles::publish()
{
    for (const File& file : _files)
        publish(file.place, file.place);
}

void MaterialFiles::publishWhereNothingIs()
{
    std::error_code ignored;
    for (const File& file : _files)
        if (!fs::exists(fs::symlink_status(file.place, ignored)))
            publish(file.place, file.place);
}

bool MaterialFiles::isOwn(const fs::path& place) const
{
    return std::ranges::find(_files, place, &File::place) != _files.end();
}

void MaterialFiles::discard()
{
    const std::lock_guard lock(placesMutex());
    for (const File& file : _files)
        if (!file.isShared)
            file.content.withdraw();
    _files.clear();
    _gathered.clear();
    leaveFolder();
}

void MaterialFiles::leaveFolder()
{
    std::error_code ignored;
    if (std::exchange(_madeFolder, false))
        fs::remove(folder(), ignored); // refuses when something is in it
}

void MaterialFiles::keep(std::unique_ptr<MaterialFiles> files)
{
    if (files)
        files->_kept = true;
    lastFiles() = std::move(files);
}

} // namespace vyr::MaterialTranslation::textures

namespace vyr::MaterialTranslation
{

void discardLastBakes()
{
    if (const auto files = std::exchange(textures::lastFiles(), nullptr))
        files->discard();
}

MaterialImages lastImages()
{
    const auto& files = textures::lastFiles();
    return files ? files->images() : MaterialImages();
}

void setBakeSettings(const BakeSettings& settings)
{
    textures::threadSettings() = settings;
}

const BakeSettings& bakeSettings()
{
    return textures::threadSettings();
}

} // namespace vyr::MaterialTranslation
