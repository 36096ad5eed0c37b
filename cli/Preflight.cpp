#include "Preflight.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>

#include "Console.h"
#include "DocumentNames.h"
#include "Paths.h"

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
            _inputs.push_back(placeOf(pathFromUtf8(file)));
        if (!command.report.empty())
            _report = placeOf(pathFromUtf8(command.report));
    }

    /// Why the report cannot be written; empty when nothing speaks against it.
    std::string reportProblem() const
    {
        std::error_code ignored;
        if (!_report)
            return {};
        if (isInput(*_report))
            return "it is an input file";
        if (fs::is_directory(*_report, ignored))
            return "it is a folder";
        const fs::path parent = _report->parent_path();
        if (parent != _folder && !fs::is_directory(parent, ignored))
            return "there is no such folder";
        return {};
    }

    /// What a document would be written over that must stay; empty for none.
    std::string documentProblem(const Task& task) const
    {
        const fs::path document = _folder / documentFile(task.name);
        if (isInput(document))
            return "an input file";
        return document == _report ? "the report" : "";
    }

  private:
    bool isInput(const fs::path& place) const
    {
        return std::ranges::find(_inputs, place) != _inputs.end();
    }

    fs::path _folder;
    std::vector<fs::path> _inputs;
    std::optional<fs::path> _report;
};

} // namespace

bool filesAreApart(const ConvertCommand& command, const std::vector<Task>& tasks)
{
    const Preflight preflight(command);
    if (const std::string problem = preflight.reportProblem(); !problem.empty())
    {
        complain("vyr-mtlx: --report " + command.report + ": " + problem);
        return false;
    }
    for (const Task& task : tasks)
    {
        const std::string problem = preflight.documentProblem(task);
        if (problem.empty())
            continue;
        complain("vyr-mtlx: the document of " + subjectOf(*task.material) + " would replace " +
                 problem);
        return false;
    }
    return true;
}

} // namespace vyr::cli
