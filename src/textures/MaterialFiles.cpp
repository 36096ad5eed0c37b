#include "textures/Translation.h"

#include <algorithm>
#include <utility>

#include <MaterialTranslation/Bakes.h>

#include "base/Paths.h"

namespace vyr::MaterialTranslation::textures
{

namespace fs = std::filesystem;

namespace
{

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
    : _outputDirectory(outputDirectory), _material(material)
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
    if (!_kept)
        discard();
}

void MaterialFiles::makeFolder()
{
    std::error_code error;
    const fs::file_status status = fs::symlink_status(folder(), error);
    if (fs::is_directory(status))
        return;
    if (fs::exists(status))
        error = std::make_error_code(std::errc::not_a_directory);
    else if (fs::create_directory(folder(), error); !error)
    {
        _madeFolder = true;
        return;
    }
    throw fs::filesystem_error("create_directory", folder(), error);
}

fs::path MaterialFiles::freePlace(const std::string& name,
                                  const std::vector<std::string>& others) const
{
    const auto placeOf = [&](const std::string& text)
    { return folder() / base::pathFromUtf8(text); };
    const auto isFree = [&](const std::string& candidate)
    {
        const fs::path place = placeOf(candidate);
        return !isOwn(place) &&
               std::ranges::none_of(
                   others, [&](const std::string& other)
                   { return base::isSamePlace(base::pathFromUtf8(other), place); });
    };
    return placeOf(base::firstFreeName(name, isFree));
}

void MaterialFiles::add(const fs::path& place, std::string_view bytes)
{
    File file{place, {}};
    if (const std::error_code error = file.content.write(place, bytes))
        throw fs::filesystem_error("write", place, error);
    _files.push_back(std::move(file));
}

void MaterialFiles::drop(const fs::path& place)
{
    std::erase_if(_files, [&](const File& file) { return file.place == place; });
}

void MaterialFiles::publish(const fs::path& place, const fs::path& destination)
{
    for (File& file : _files)
    {
        if (file.place != place || file.isPublished)
            continue;
        if (const std::error_code error = file.content.publish(destination))
            throw fs::filesystem_error("rename", destination, error);
        file.isPublished = true;
    }
}

void MaterialFiles::publish()
{
    for (const File& file : _files)
        publish(file.place, file.place);
}

bool MaterialFiles::isOwn(const fs::path& place) const
{
    return std::ranges::find(_files, place, &File::place) != _files.end();
}

void MaterialFiles::discard()
{
    for (const File& file : _files)
        file.content.withdraw();
    _files.clear();
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

void setBakeSettings(const BakeSettings& settings)
{
    textures::threadSettings() = settings;
}

const BakeSettings& bakeSettings()
{
    return textures::threadSettings();
}

} // namespace vyr::MaterialTranslation
