#include <algorithm>
#include <fstream>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <MaterialTranslation/DocumentIO.h>

#include "base/Paths.h"
#include "base/Text.h"
#include "base/WriteFile.h"
#include "converter/Driver.h"
#include "textures/Translation.h"

namespace vyr::MaterialTranslation::converter
{

namespace mx = MaterialX;
namespace fs = std::filesystem;

namespace
{

enum class Rank
{
    InPlace,
    Users,
    Baked,
};

/// One file and its place in the material's folder.
struct GatheredFile
{
    std::string source;
    fs::path destination;
    bool baked = false;
};

/// What stands at the path, links followed; not found is no error.
fs::file_status statusOf(const fs::path& path)
{
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (status.type() == fs::file_type::none)
        throw fs::filesystem_error("exists", path, error);
    return status;
}

bool haveEqualBytes(const fs::path& a, const fs::path& b)
{
    std::ifstream first(a, std::ios::binary);
    std::ifstream second(b, std::ios::binary);
    std::vector<char> ofFirst(std::size_t{1} << 16);
    std::vector<char> ofSecond(ofFirst.size());
    while (first && second)
    {
        first.read(ofFirst.data(), static_cast<std::streamsize>(ofFirst.size()));
        second.read(ofSecond.data(), static_cast<std::streamsize>(ofSecond.size()));
        if (first.gcount() != second.gcount() ||
            !std::equal(ofFirst.begin(), ofFirst.begin() + first.gcount(), ofSecond.begin()))
            return false;
    }
    return first.eof() && second.eof();
}

class Gathering
{
  public:
    Gathering(textures::MaterialFiles& files, const Log& log)
        : _files(files), _folder(files.folder()), _log(log)
    {
    }

    void run(const mx::Document& document, std::size_t firstChild)
    {
        const auto& children = document.getChildren();
        for (std::size_t i = firstChild; i < children.size(); ++i)
            for (const mx::InputPtr& input : fileInputs(children[i]))
                _inputs.emplace_back(input, input->getValueString());
        for (const auto& [input, path] : _inputs)
            if (std::ranges::find(_paths, path) == _paths.end())
                _paths.push_back(path);
        try
        {
            plan();
        }
        catch (const fs::filesystem_error&)
        {
            _files.publish();
            throw;
        }
        if (_gathered.empty())
            return;
        _files.makeFolder();
        for (const auto& [path, file] : _gathered)
            if (file.baked)
                _files.publish(base::pathFromUtf8(path), file.destination);
        // The document names them where they are now, even if a copy fails.
        rewriteInputs(true);
        for (const auto& [path, file] : _gathered)
            if (!file.baked)
                copy(file);
        rewriteInputs(false);
    }

  private:
    /// Gives each file a place: first the users' files that are in the folder already and must not
    /// be overwritten, then the other users' files, last the converter's own, which can be moved.
    void plan()
    {
        for (const Rank rank : {Rank::InPlace, Rank::Users, Rank::Baked})
            for (const std::string& path : _paths)
                if (rankOf(path) == rank)
                    planFile(path, rank == Rank::Baked);
    }

    Rank rankOf(const std::string& path) const
    {
        if (isBaked(path))
            return Rank::Baked;
        return base::isSameFile(base::pathFromUtf8(path).parent_path(), _folder) ? Rank::InPlace
                                                                                 : Rank::Users;
    }

    bool isBaked(const std::string& path) const { return _files.isOwn(base::pathFromUtf8(path)); }

    void planFile(const std::string& path, bool baked)
    {
        const fs::path source = base::pathFromUtf8(path);
        if (baked)
        {
            const std::string name(base::lastComponent(path));
            _gathered[path] = {path, place(name, path, true), true};
            return;
        }
        const fs::file_status status = statusOf(source);
        if (!fs::exists(status) || source.is_relative())
            return;
        const std::string_view name = base::lastComponent(path);
        if (base::isUnsafeName(name))
        {
            _log.warning(DiagnosticCode::TextureNameRefused, "",
                         "not gathered, for its name: " + base::xmlText(path));
            return;
        }
        if (!fs::is_regular_file(status))
        {
            _log.warning(DiagnosticCode::TextureNotGathered, "",
                         "not gathered, it is no ordinary file: " + path);
            return;
        }
        if (const auto* same = findSame(source))
            _gathered[path] = *same;
        else
            _gathered[path] = {path, place(std::string(name), path, false), false};
    }

    /// A file that was planned under another spelling of its path.
    const GatheredFile* findSame(const fs::path& source) const
    {
        const auto file = std::ranges::find_if(
            _gathered, [&](const auto& entry)
            { return base::isSameFile(base::pathFromUtf8(entry.first), source); });
        return file == _gathered.end() ? nullptr : &file->second;
    }

    fs::path place(const std::string& name, const std::string& path, bool baked)
    {
        const auto destination = [&](const std::string& candidate)
        { return _folder / base::pathFromUtf8(candidate); };
        const std::string taken =
            _names.take(base::portableName(name), [&](const std::string& candidate)
                        { return !isOccupied(destination(candidate), path, baked); });
        if (taken != name && !baked)
            _log.warning(DiagnosticCode::TextureRenamed, "",
                         "gathered under the name " + taken + ": " + path);
        return destination(taken);
    }

    /// Whether a folder or another source stands in the way; only a baked file makes room for others.
    bool isOccupied(const fs::path& destination, const std::string& path, bool baked) const
    {
        std::error_code error;
        if (fs::is_directory(fs::symlink_status(destination, error)))
            return true;
        const auto isThere = [&](const std::string& other)
        {
            const fs::path file = base::pathFromUtf8(other);
            return file == destination || base::isSameFile(file, destination);
        };
        return !isThere(path) &&
               std::ranges::any_of(_paths, [&](const std::string& other)
                                   { return (baked || !isBaked(other)) && isThere(other); });
    }

    static void copy(const GatheredFile& file)
    {
        const fs::path source = base::pathFromUtf8(file.source);
        if (isUpToDate(source, file.destination))
            return;
        if (const auto error = base::copyFile(source, file.destination))
            throw fs::filesystem_error("copy_file", source, file.destination, error);
    }

    /// Whether the destination is the source itself or a whole copy that is not older. A symbolic
    /// link in the destination's place is neither: it is replaced, not followed.
    static bool isUpToDate(const fs::path& source, const fs::path& destination)
    {
        std::error_code error;
        const fs::file_status status = fs::symlink_status(destination, error);
        if (!fs::is_regular_file(status))
            return false;
        if (base::isSameFile(source, destination))
            return true;
        if (fs::file_size(source, error) != fs::file_size(destination, error) || error)
            return false;
        // Copies keep the time, so an equal one says nothing yet: another image may have been there.
        const auto sourceTime = fs::last_write_time(source, error);
        const auto destinationTime = fs::last_write_time(destination, error);
        return !error && (sourceTime < destinationTime ||
                          (sourceTime == destinationTime && haveEqualBytes(source, destination)));
    }

    void rewriteInputs(bool baked) const
    {
        for (const auto& [input, path] : _inputs)
        {
            const auto file = _gathered.find(path);
            if (file != _gathered.end() && file->second.baked == baked &&
                fs::exists(statusOf(file->second.destination)))
                input->setValueString(base::genericUtf8FromPath(file->second.destination));
        }
    }

    textures::MaterialFiles& _files;
    const fs::path& _folder;
    const Log& _log;
    /// With the paths that they named at first.
    std::vector<std::pair<mx::InputPtr, std::string>> _inputs;
    /// Each path that is referred to, once, in the document's order.
    std::vector<std::string> _paths;
    base::UniqueNames _names;
    std::map<std::string, GatheredFile> _gathered;
};

} // namespace

void gatherTextures(const Translation& translation, std::size_t firstChild)
{
    gatherTextures(*translation.document, firstChild, translation.files, translation.log);
}

void gatherTextures(const mx::Document& document, std::size_t firstChild,
                    textures::MaterialFiles& files, const Log& log)
{
    Gathering(files, log).run(document, firstChild);
}

} // namespace vyr::MaterialTranslation::converter
