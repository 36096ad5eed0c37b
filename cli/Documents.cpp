#include "Documents.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <system_error>
#include <utility>

#include "Console.h"
#include "EarlierRuns.h"
#include "Progress.h"
#include "Report.h"
#include "base/Paths.h"
#include "base/WriteFile.h"
#include "batch/Refusal.h"

namespace vyr::cli
{
namespace
{

using batch::Outcome;
using batch::Task;
using batch::writeFailure;

/// Whether there is no room on the disk, whoever says so.
bool isFullDisk(const Outcome& outcome)
{
    const auto tells = [&](int error)
    { return outcome.message.find(std::generic_category().message(error)) != std::string::npos; };
#if defined(EDQUOT)
    if (!outcome.converted && tells(EDQUOT))
        return true;
#endif
    return !outcome.converted && tells(ENOSPC);
}

/// Takes the outcomes of a conversion in input order: prints them, counts them, and notes them for
/// the report and for later runs. Not thread-safe.
class Delivery
{
  public:
    /// All are borrowed.
    /// @param things what the tasks are: "materials" or "overlays".
    Delivery(const DocumentsCommand& command, const std::vector<Task>& tasks,
             const batch::Source& source, const char* things, const batch::OutputFolder& folder)
        : _command(command), _tasks(tasks), _source(source), _things(things), _folder(folder),
          _progress(progressOf(command), tasks.size()), _report(command.report, things),
          _runs(folder, things, command.files)
    {
    }
    Delivery(const Delivery&) = delete;
    Delivery& operator=(const Delivery&) = delete;
    ~Delivery() { printResults(); }

    void take(std::size_t step, const Outcome& outcome)
    {
        const Task& task = _tasks[step];
        // The disk is full for all of them: one message and a count say as much as thousands.
        const bool isFull = isFullDisk(outcome);
        const bool isSilent = outcome.warnings.empty() && (outcome.converted || (isFull && _full));
        _full += isFull;
        const std::string messages =
            isSilent ? ""
                     : messageLines(batch::fileOf(task.item), batch::subjectOf(task.item), outcome);
        if (!messages.empty() || Results::onTerminal())
            _progress.clear();
        // Both may go to one file, and what was done before is told before.
        if (!messages.empty())
            printResults();
        complainAsIs(messages);
        if (outcome.converted && _command.printDocuments && _command.report != standardStream)
            _lines += outcome.document + '\n';
        constexpr std::size_t enough = 1U << 14;
        if (!Results::intoFile() || _lines.size() > enough)
            printResults();
        ++(outcome.converted ? _converted : _failed);
        _unchanged += outcome.unchanged;
        if (!outcome.warnings.empty())
            ++_warned;
        _progress.show(step + 1, _failed);
        _report.add(task, outcome);
        if (outcome.converted)
            _runs.note(batch::fileOf(task.item), task.name, outcome.written);
    }

    /// Removes what is to be pruned, prints the summary, and writes the report and the lists for later runs.
    /// @param done number of outcomes that were taken.
    /// @return how the conversion ended.
    ExitStatus finish(std::size_t done)
    {
        printResults();
        _progress.clear();
        const bool isComplete = done == _tasks.size();
        std::vector<std::string> removed;
        if (_command.prune && isComplete)
            removed = prune();
        if (_full > 1)
            complain("vyr-mtlx: " + std::to_string(_full - 1) + " more " + _things +
                     " failed because the disk is full");
        if (!_command.quiet)
            complain("vyr-mtlx: " + summary(removed.size()));
        for (std::size_t step = done; step < _tasks.size(); ++step)
            _report.addUntried(_tasks[step]);
        const bool isListed = _runs.write();
        const bool isReported =
            _report.write(isComplete ? "complete" : "interrupted", removed, _results);
        if (!isComplete)
        {
            complain("vyr-mtlx: interrupted, " + std::to_string(_tasks.size() - done) + " of " +
                     std::to_string(_tasks.size()) + " " + _things + " were not tried");
            return ExitStatus::Interrupted;
        }
        const bool stays = !_command.sync || reachDisk();
        const bool good = _failed == 0 && (_warned == 0 || !_command.strict);
        return good && isListed && isReported && stays && _results.delivered()
                   ? ExitStatus::Done
                   : ExitStatus::SomeFailed;
    }

  private:
    static ProgressForm progressOf(const DocumentsCommand& command)
    {
        const bool isStill = command.quiet || command.options.verbose;
        return isStill && command.progress == ProgressForm::Bar ? ProgressForm::None
                                                                : command.progress;
    }

    void printResults()
    {
        if (!_lines.empty())
            _results.write(std::exchange(_lines, std::string()));
    }

    std::string summary(std::size_t removed) const
    {
        std::string text = std::to_string(_converted) + " converted, " + std::to_string(_failed) +
                           " failed, " + std::to_string(_warned) + " with warnings";
        if (_unchanged > 0)
            text += ", " + std::to_string(_unchanged) + " unchanged";
        if (removed > 0)
            text += ", " + std::to_string(removed) + " files of earlier runs removed";
        return text;
    }

    std::vector<std::string> prune()
    {
        std::vector<std::string> names;
        for (const Task& task : _tasks)
            names.push_back(task.name);
        std::optional<std::set<std::filesystem::path>> images;
        const auto isInUse = [&](const std::filesystem::path& image)
        {
            if (!images)
                images = batch::imagePlaces(_source);
            return images->contains(image);
        };
        return _runs.prune(names, isInUse);
    }

    /// What was told to be done outlives a power cut. The report may be on another disk.
    bool reachDisk() const
    {
        const auto failsFor = [](const std::filesystem::path& place)
        {
            const auto error = base::waitForDisk(place);
            if (error)
                complain("vyr-mtlx: " + writeFailure(base::utf8FromPath(place), error.message()));
            return static_cast<bool>(error);
        };
        const bool isFile = !_command.report.empty() && _command.report != standardStream;
        const auto reportFolder = base::pathFromUtf8(_command.report).parent_path();
        return !failsFor(_folder.absolute) && (!isFile || !failsFor(reportFolder));
    }

    const DocumentsCommand& _command;
    const std::vector<Task>& _tasks;
    const batch::Source& _source;
    const char* _things;
    const batch::OutputFolder& _folder;
    Progress _progress;
    Results _results;
    /// Results that are not printed yet.
    std::string _lines;
    Report _report;
    EarlierRuns _runs;
    std::size_t _converted = 0;
    std::size_t _failed = 0;
    std::size_t _warned = 0;
    std::size_t _unchanged = 0;
    /// Of the failed ones, those for which the disk had no room.
    std::size_t _full = 0;
};

} // namespace

void complainOf(const batch::Refusal& refusal)
{
    // Errors of files begin with their place, all others with the program.
    const bool isOfFiles = dynamic_cast<const batch::LoadRefusal*>(&refusal) != nullptr;
    const bool isOfAssets = dynamic_cast<const batch::UnknownMaterial*>(&refusal) != nullptr;
    const std::string lead = isOfFiles ? "" : isOfAssets ? "vyr-mtlx: --asset: " : "vyr-mtlx: ";
    for (const std::string& reason : refusal.reasons())
        complain(lead + reason);
}

batch::Source loadFiles(const DocumentsCommand& command)
{
    const bool takesInput = std::ranges::find(command.files, standardStream) != command.files.end();
    if (command.prune && takesInput)
        throw batch::Refusal("--prune: of standard input no earlier run is known");
    return batch::loadFiles(command.files, {command.texturePaths, jobsOf(command), true});
}

void checkCanConvert(const DocumentsCommand& command, const std::vector<Task>& tasks,
                     const batch::Source& source)
{
    batch::Settings settings = command;
    if (command.report == standardStream)
    {
        if (command.options.verbose)
            throw batch::Refusal("--report -: standard output has what --verbose prints");
        settings.report.clear();
    }
    batch::checkCanConvert(settings, tasks, source);
}

ExitStatus convertAll(const DocumentsCommand& command, const std::vector<Task>& tasks,
                      const batch::Source& source, const char* things,
                      const batch::OutputFolder& folder, std::size_t workers,
                      const batch::Translate& translate)
{
    Delivery delivery(command, tasks, source, things, folder);
    const auto deliver = [&delivery](std::size_t step, const Outcome& outcome)
    { delivery.take(step, outcome); };
    batch::Settings settings = command;
    settings.listImages = !command.report.empty();
    return delivery.finish(
        batch::convertAll({translate, deliver, stopRequested}, tasks, folder, settings, workers));
}

} // namespace vyr::cli
