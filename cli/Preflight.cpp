#include "Preflight.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "Console.h"
#include "DocumentNames.h"
#include "Paths.h"
#include "Source.h"

namespace vyr::cli
{
namespace
{

namespace fs = std::filesystem;

class Preflight
{
  public:
    explicit Preflight(const ConvertCommand& command)
        : _folder(placeOf(pathFromUtf8(command.output) / "*").parent_path())
    {
        for (const std::string& file : command.files)
        {
            const fs::path place = placeOf(pathFromUtf8(file));
            for (const fs::path& input : {place, targetOf(place)})
            {
                _inputs.push_back(input);
                keep(input, "an input file");
            }
        }
        if (command.report.empty())
            return;
        _report = placeOf(pathFromUtf8(command.report));
        keep(*_report, "the report");
    }

    /// Why the report cannot be written; empty when nothing speaks against it.
    std::string reportProblem() const
    {
        std::error_code ignored;
        if (!_report)
            return {};
        if (std::ranges::find(_inputs, *_report) != _inputs.end())
            return "it is an input file";
        if (fs::is_directory(*_report, ignored))
            return "it is a folder";
        // A link may lead to what this process has open, as "/dev/stdout" does.
        const fs::file_status status = fs::symlink_status(*_report, ignored);
        if (fs::exists(status) && !fs::is_regular_file(status))
            return "it is no ordinary file";
        const fs::path parent = _report->parent_path();
        if (parent != _folder && !fs::is_directory(parent, ignored))
            return "there is no such folder";
        return {};
    }

    /// An image is an input like a library, and must not lie where another material's images go: they
    /// might replace it.
    /// @param names of all materials of the run, which are those of their folders.
    /// @return what is wrong; empty for nothing.
    std::string imageProblem(const Task& task, const std::unordered_set<std::string>& names)
    {
        for (const std::string& reference : reachOf(*task.material->asset).images)
        {
            const auto& [image, target] = placeOfImage(reference);
            if (image == _report || target == _report)
                return "the report would replace its image " + reference;
            const fs::path folder = image.parent_path();
            const std::string name = utf8FromPath(folder.filename());
            if (folder.parent_path() == _folder && name != task.name && names.contains(name))
                return "its image " + reference + " lies in the folder of another material";
        }
        return {};
    }

    /// What a document would be written over that must stay; empty for none.
    std::string documentProblem(const Task& task) const
    {
        const auto kept = _kept.find(documentFile(task.name).native());
        return kept == _kept.end() ? "" : kept->second;
    }

  private:
    /// Where a file lies that a link leads to; the place itself for any other.
    static fs::path targetOf(const fs::path& place)
    {
        std::error_code error;
        const fs::path target = fs::canonical(place, error);
        return error ? place : target;
    }

    /// Where an image lies, and where it does if that is a link. Many materials share one, and both ask
    /// the file system.
    const std::pair<fs::path, fs::path>& placeOfImage(const std::string& reference)
    {
        const auto [entry, isNew] = _images.try_emplace(reference);
        if (isNew)
        {
            const fs::path place = placeOf(pathFromUtf8(reference));
            entry->second = {place, targetOf(place)};
        }
        return entry->second;
    }

    void keep(const fs::path& place, const std::string& what)
    {
        if (place.parent_path() == _folder)
            _kept.try_emplace(place.filename().native(), what);
    }

    fs::path _folder;
    std::vector<fs::path> _inputs;
    std::optional<fs::path> _report;
    std::unordered_map<std::string, std::pair<fs::path, fs::path>> _images;
    /// Files in the output folder that are not to be replaced, and what they are.
    std::unordered_map<fs::path::string_type, std::string> _kept;
};

} // namespace

bool filesAreApart(const ConvertCommand& command, const std::vector<Task>& tasks)
{
    Preflight preflight(command);
    if (const std::string problem = preflight.reportProblem(); !problem.empty())
    {
        complain("vyr-mtlx: --report " + command.report + ": " + problem);
        return false;
    }
    std::unordered_set<std::string> names;
    for (const Task& task : tasks)
        names.insert(task.name);
    for (const Task& task : tasks)
    {
        std::string problem = preflight.imageProblem(task, names);
        if (const std::string replaced = preflight.documentProblem(task); !replaced.empty())
            problem = "its document would replace " + replaced;
        if (problem.empty())
            continue;
        complain("vyr-mtlx: " + subjectOf(*task.material) + ": " + problem);
        return false;
    }
    return true;
}

} // namespace vyr::cli
