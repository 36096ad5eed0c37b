#include "textures/Translation.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <utility>

#include <MaterialTranslation/Bakes.h>

#include "base/Paths.h"

namespace vyr::MaterialTranslation::textures
{

namespace fs = std::filesystem;

namespace
{

/// The files and folders that the translations under way make, of all threads: two of one material name may
/// make the same ones at the same time. The last one to let go removes what was not there before them,
/// unless one of them keeps it.
class Claims
{
  public:
    void add(const fs::path& path)
    {
        const std::lock_guard lock(_mutex);
        Claim& claim = _claims[path];
        std::error_code error;
        if (claim.users++ == 0)
            claim.isNew = !fs::exists(fs::symlink_status(path, error));
    }

    void release(const fs::path& path, bool keep)
    {
        const std::lock_guard lock(_mutex);
        const auto found = _claims.find(path);
        if (found == _claims.end())
            return;
        Claim& claim = found->second;
        claim.isNew = claim.isNew && !keep;
        if (--claim.users > 0)
            return;
        std::error_code ignored;
        if (claim.isNew)
            fs::remove(path, ignored); // refuses a folder when something is in it
        _claims.erase(found);
    }

  private:
    struct Claim
    {
        int users = 0;
        bool isNew = false;
    };

    std::mutex _mutex;
    std::map<fs::path, Claim> _claims;
};

Claims& claims()
{
    // Never destroyed: threads may end after the program's static objects.
    static Claims& all = *new Claims;
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

MaterialFiles::MaterialFiles(const std::string& outputDirectory, const std::string& material)
    : _folder(fs::absolute(base::pathFromUtf8(outputDirectory)) / base::pathFromUtf8(material))
{
}

MaterialFiles::~MaterialFiles()
{
    release(_kept);
}

void MaterialFiles::makeFolder()
{
    std::error_code error;
    if (_claimedFolder.empty())
    {
        // One place has one name here, however the output directory is spelt.
        const fs::path real = fs::canonical(_folder.parent_path(), error);
        fs::path folder = (error ? _folder.parent_path() : real) / _folder.filename();
        claims().add(folder);
        _claimedFolder = std::move(folder);
    }
    const fs::file_status status = fs::symlink_status(_folder, error);
    if (fs::is_directory(status))
        return;
    if (fs::exists(status))
        error = std::make_error_code(std::errc::not_a_directory);
    else if (fs::create_directory(_folder, error); !error)
        return;
    throw fs::filesystem_error("create_directory", _folder, error);
}

fs::path MaterialFiles::claimOf(const fs::path& file) const
{
    return _claimedFolder / file.filename();
}

fs::path MaterialFiles::claim(const std::string& name, const std::vector<std::string>& others)
{
    const auto placeOf = [&](const std::string& text)
    { return _folder / base::pathFromUtf8(text); };
    const auto isFree = [&](const std::string& candidate)
    {
        const fs::path place = placeOf(candidate);
        const auto isPlace = [&](const std::string& other)
        {
            const fs::path image = base::pathFromUtf8(other).lexically_normal();
            return image == place.lexically_normal() || base::isSameFile(image, place);
        };
        return !isOwn(place) && std::ranges::none_of(others, isPlace);
    };
    fs::path place = placeOf(base::firstFreeName(name, isFree));
    _files.reserve(_files.size() + 1);
    claims().add(claimOf(place));
    _files.push_back(place);
    return place;
}

void MaterialFiles::drop(const fs::path& file)
{
    if (std::erase(_files, file) != 0)
        claims().release(claimOf(file), false);
}

void MaterialFiles::move(const fs::path& from, const fs::path& to)
{
    std::error_code error;
    claims().add(claimOf(to));
    fs::rename(from, to, error);
    claims().release(claimOf(error ? to : from), true);
    if (error)
        throw fs::filesystem_error("rename", from, to, error);
    std::ranges::replace(_files, from, to);
}

bool MaterialFiles::isOwn(const fs::path& file) const
{
    return std::ranges::find(_files, file) != _files.end();
}

void MaterialFiles::release(bool keep)
{
    for (const fs::path& file : _files)
        claims().release(claimOf(file), keep);
    _files.clear();
    if (!_claimedFolder.empty())
        claims().release(std::exchange(_claimedFolder, fs::path()), false);
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
        files->release(false);
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
