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

/// Which files the translations under way have claimed, of all threads: two of one material name may bake
/// the same file at the same time, and then neither may remove it.
class Claims
{
  public:
    void add(const fs::path& file)
    {
        std::error_code error;
        const bool isNew = !fs::exists(fs::symlink_status(file, error));
        const std::lock_guard lock(_mutex);
        Claim& claim = _claims[file];
        claim.removable = isNew && claim.users == 0;
        ++claim.users;
    }

    /// @return whether the file is that user's alone to remove.
    bool release(const fs::path& file)
    {
        const std::lock_guard lock(_mutex);
        const auto claim = _claims.find(file);
        if (claim == _claims.end())
            return false;
        const bool removable = claim->second.removable;
        if (--claim->second.users == 0)
            _claims.erase(claim);
        return removable;
    }

    void rename(const fs::path& from, const fs::path& to)
    {
        const std::lock_guard lock(_mutex);
        if (auto claim = _claims.extract(from))
        {
            claim.key() = to;
            _claims.insert(std::move(claim));
        }
    }

  private:
    struct Claim
    {
        int users = 0;
        /// Whether the file was not there before the only user.
        bool removable = false;
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
    if (!_kept)
        discard();
    for (const fs::path& file : _files)
        claims().release(file);
}

void MaterialFiles::makeFolder()
{
    std::error_code error;
    const fs::file_status status = fs::symlink_status(_folder, error);
    if (fs::is_directory(status))
        return;
    error =
        fs::exists(status) ? std::make_error_code(std::errc::not_a_directory) : std::error_code();
    if (!error)
        _madeFolder = fs::create_directory(_folder, error) || _madeFolder;
    if (error)
        throw fs::filesystem_error("create_directory", _folder, error);
}

fs::path MaterialFiles::claim(const std::string& name, const std::vector<std::string>& others)
{
    const auto placeOf = [&](const std::string& text)
    { return _folder / base::pathFromUtf8(text); };
    const auto isFree = [&](const std::string& candidate)
    {
        const fs::path place = placeOf(candidate);
        return !isOwn(place) &&
               std::ranges::none_of(others, [&](const std::string& other)
                                    { return base::isSameFile(base::pathFromUtf8(other), place); });
    };
    fs::path place = placeOf(base::numberedName(name, isFree));
    claims().add(place);
    _files.push_back(place);
    return place;
}

void MaterialFiles::drop(const fs::path& file)
{
    std::error_code ignored;
    if (std::erase(_files, file) != 0 && claims().release(file))
        fs::remove(file, ignored);
    if (_files.empty() && _madeFolder)
        fs::remove(_folder, ignored); // refuses when something is in it
}

void MaterialFiles::rename(const fs::path& from, const fs::path& to)
{
    claims().rename(from, to);
    std::ranges::replace(_files, from, to);
}

bool MaterialFiles::isOwn(const fs::path& file) const
{
    return std::ranges::find(_files, file) != _files.end();
}

void MaterialFiles::discard()
{
    std::error_code ignored;
    if (_files.empty() && _madeFolder)
        fs::remove(_folder, ignored); // refuses when something is in it
    while (!_files.empty())
        drop(fs::path(_files.back()));
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

void setBakeSettings(const BakeSettings& settings)
{
    textures::threadSettings() = settings;
}

const BakeSettings& bakeSettings()
{
    return textures::threadSettings();
}

} // namespace vyr::MaterialTranslation
