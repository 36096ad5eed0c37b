#include <algorithm>
#include <map>
#include <set>
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

class Gathering
{
  public:
    /// @param images further ones of the user, which must not be replaced.
    Gathering(textures::MaterialFiles& files, const std::vector<std::string>& images,
              const Log& log)
        : _files(files), _folder(files.folder()), _log(log)
    {
        for (const std::string& image : images)
            protect(image);
    }

    void run(const mx::Document& document, std::size_t firstChild)
    {
        const auto& children = document.getChildren();
        for (std::size_t i = firstChild; i < children.size(); ++i)
            for (const mx::InputPtr& input : fileInputs(children[i]))
                _inputs.emplace_back(input, input->getValueString());
        std::set<std::string> known;
        for (const auto& [input, path] : _inputs)
            if (known.insert(path).second)
                _paths.push_back(path);
        for (const std::string& path : _paths)
            if (!isBaked(path))
                protect(path);
        try
        {
            plan();
            if (_gathered.empty())
                return;
            _files.makeFolder();
            for (const auto& [path, file] : _gathered)
                if (file.baked)
                    _files.prepare(base::pathFromUtf8(path), file.destination);
            copyAll();
        }
        catch (const fs::filesystem_error&)
        {
            // The document names them, and an older result is not to change.
            _files.publishWhereNothingIs();
            _files.leaveFolder();
            throw;
        }
        for (const auto& [path, file] : _gathered)
            if (file.baked)
                _files.publish(base::pathFromUtf8(path), file.destination);
        rewriteInputs();
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
        // What the system makes up is empty by its size, and some of it never ends.
        std::error_code error;
        if (fs::file_size(source, error) == 0)
        {
            _log.warning(DiagnosticCode::TextureNotGathered, "",
                         "not gathered, the file is empty: " + path);
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

    /// Notes the places of a user's image, links that lead to it included.
    void protect(const std::string& image)
    {
        for (std::string& key : base::placeKeys(base::pathFromUtf8(image)))
            _users.insert(std::move(key));
    }

    /// Whether a folder, a device or another image of the user stands in the way.
    bool isOccupied(const fs::path& destination, const std::string& path, bool baked) const
    {
        std::error_code error;
        if (fs::is_directory(fs::symlink_status(destination, error)))
            return true;
        const fs::file_status status = fs::status(destination, error);
        if (fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status))
            return true;
        if (base::pathFromUtf8(path) == destination ||
            (!baked && base::isSameFile(destination, base::pathFromUtf8(path))))
            return false;
        if (_users.contains(base::placeKey(destination)))
            return true;
        // By a further name of the file.
        return fs::exists(status) &&
               std::ranges::any_of(_paths,
                                   [&](const std::string& other)
                                   {
                                       return !isBaked(other) &&
                                              base::isSameFile(base::pathFromUtf8(other),
                                                               destination);
                                   });
    }

    /// When one of the first sixteen cannot be copied, none is: the folder stays as it was.
    void copyAll()
    {
        // Each keeps a file open until it gets its name, and other threads gather too.
        constexpr std::size_t mostPending = 16;
        std::vector<std::pair<base::PendingFile, const GatheredFile*>> pending;
        const auto finish = [&]
        {
            for (auto& [content, file] : pending)
                if (const auto error = content.replace(file->destination))
                    throwCopyError(*file, error);
            pending.clear();
        };
        std::set<fs::path> done;
        for (const auto& [path, file] : _gathered)
        {
            const fs::path source = base::pathFromUtf8(file.source);
            if (file.baked || base::placeKey(source) == base::placeKey(file.destination) ||
                isSameFile(source, file.destination) || !done.insert(file.destination).second)
                continue;
            _files.addGathered(file.destination);
            if (_files.same() == base::SameBytes::Stay &&
                base::hasBytesOf(file.destination, source))
                continue;
            auto& [content, copied] = pending.emplace_back(base::PendingFile(), &file);
            if (const auto error = content.copy(source, file.destination))
                throwCopyError(file, error);
            if (pending.size() == mostPending)
                finish();
        }
        finish();
    }

    /// Whether the destination is the source itself, not a link to it, which would be replaced.
    static bool isSameFile(const fs::path& source, const fs::path& destination)
    {
        std::error_code error;
        return fs::is_regular_file(fs::symlink_status(destination, error)) &&
               base::isSameFile(source, destination);
    }

    [[noreturn]] static void throwCopyError(const GatheredFile& file, const std::error_code& error)
    {
        throw fs::filesystem_error("copy_file", base::pathFromUtf8(file.source), file.destination,
                                   error);
    }

    void rewriteInputs() const
    {
        for (const auto& [input, path] : _inputs)
            if (const auto file = _gathered.find(path);
                file != _gathered.end() && fs::exists(statusOf(file->second.destination)))
                input->setValueString(base::genericUtf8FromPath(file->second.destination));
    }

    textures::MaterialFiles& _files;
    const fs::path& _folder;
    const Log& _log;
    /// With the paths that they named at first.
    std::vector<std::pair<mx::InputPtr, std::string>> _inputs;
    /// Each path that is referred to, once, in the document's order.
    std::vector<std::string> _paths;
    /// Keys of the places of the user's images.
    std::set<std::string> _users;
    base::UniqueNames _names;
    std::map<std::string, GatheredFile> _gathered;
};

} // namespace

void gatherTextures(const Translation& translation, std::size_t firstChild)
{
    const auto images = assets::imagesOf(translation.asset);
    Gathering(translation.files, images.value_or(std::vector<std::string>()), translation.log)
        .run(*translation.document, firstChild);
}

void gatherTextures(const mx::Document& document, std::size_t firstChild,
                    textures::MaterialFiles& files, const Log& log)
{
    Gathering(files, {}, log).run(document, firstChild);
}

} // namespace vyr::MaterialTranslation::converter
