#include "Documents.h"

#include <filesystem>
#include <utility>

#include <MaterialTranslation/Diagnostics.h>

#include "Console.h"
#include "Json.h"
#include "base/Paths.h"
#include "base/WriteFile.h"

namespace vyr::cli
{
namespace
{

using batch::Outcome;
using batch::Task;
using batch::writeFailure;

void addItem(const JsonNode& entry, const assetlib::Material& material, const std::string& name)
{
    entry.add("id", material.id);
    entry.add("name", name);
    entry.add("schema", material.schema);
}

void addItem(const JsonNode& entry, const assetlib::Overlay& overlay, const std::string& name)
{
    entry.add("overlay", overlay.name);
    entry.add("name", name);
    entry.add("type", batch::typeName(overlay));
}

/// Takes the outcomes of a conversion in input order: prints them, counts them, and notes them for
/// the report. Not thread-safe.
class Delivery
{
  public:
    /// All are borrowed.
    /// @param things what the tasks are: "materials" or "overlays".
    Delivery(const DocumentsCommand& command, const std::vector<Task>& tasks, const char* things)
        : _command(command), _tasks(tasks), _things(things),
          _progress(!command.quiet && !command.options.verbose, tasks.size())
    {
        _report.root().add("converter", MaterialTranslation::libraryVersion());
        _entries = _report.root().addList(things);
    }
    Delivery(const Delivery&) = delete;
    Delivery& operator=(const Delivery&) = delete;
    ~Delivery() { printResults(); }

    void take(std::size_t step, const Outcome& outcome)
    {
        const Task& task = _tasks[step];
        const bool isSilent = outcome.converted && outcome.warnings.empty();
        const std::string messages =
            isSilent ? ""
                     : messageLines(batch::fileOf(task.item), batch::subjectOf(task.item), outcome);
        if (!messages.empty() || Results::onTerminal())
            _progress.clear();
        // Both may go to one file, and what was done before is told before.
        if (!messages.empty())
            printResults();
        complainAsIs(messages);
        if (outcome.converted)
            _lines += outcome.document + '\n';
        constexpr std::size_t enough = 1U << 14;
        if (!Results::intoFile() || _lines.size() > enough)
            printResults();
        _progress.show(step + 1);
        ++(outcome.converted ? _converted : _failed);
        if (!outcome.warnings.empty())
            ++_warned;
        if (!_command.report.empty())
            note(task, outcome);
    }

    /// Prints the summary and writes the report; neither is complete when the run was interrupted,
    /// and then there is no report.
    /// @param done number of outcomes that were taken.
    /// @return how the conversion ended.
    ExitStatus finish(std::size_t done, const batch::OutputFolder& folder)
    {
        printResults();
        _progress.clear();
        if (!_command.quiet)
            complain("vyr-mtlx: " + std::to_string(_converted) + " converted, " +
                     std::to_string(_failed) + " failed, " + std::to_string(_warned) +
                     " with warnings");
        if (done < _tasks.size())
        {
            complain("vyr-mtlx: interrupted, " + std::to_string(_tasks.size() - done) + " of " +
                     std::to_string(_tasks.size()) + " " + _things + " were not tried");
            return ExitStatus::Interrupted;
        }
        const bool reported = _command.report.empty() || writeReport();
        const bool stays = !_command.sync || reachDisk(folder);
        const bool good = _failed == 0 && (_warned == 0 || !_command.strict);
        return good && reported && stays && _results.delivered() ? ExitStatus::Done
                                                                 : ExitStatus::SomeFailed;
    }

  private:
    void printResults()
    {
        if (!_lines.empty())
            _results.write(std::exchange(_lines, std::string()));
    }

    void note(const Task& task, const Outcome& outcome)
    {
        const JsonNode entry = _entries.addObject();
        std::visit([&](const auto* item) { addItem(entry, *item, task.name); }, task.item);
        entry.add("file", batch::fileOf(task.item));
        entry.add("status", outcome.converted ? "converted" : "failed");
        entry.addOrNull("document", outcome.document);
        entry.add("textures", outcome.textures);
        entry.addOrNull("message", outcome.message);
        const JsonNode warnings = entry.addList("warnings");
        for (const batch::Remark& warning : outcome.warnings)
        {
            const JsonNode object = warnings.addObject();
            object.add("code", warning.code);
            object.add("property", warning.property);
            object.add("text", warning.text);
        }
    }

    /// What was told to be done outlives a power cut. The report may be on another disk.
    bool reachDisk(const batch::OutputFolder& folder) const
    {
        const auto failsFor = [](const std::filesystem::path& place)
        {
            const auto error = base::waitForDisk(place);
            if (error)
                complain("vyr-mtlx: " + writeFailure(base::utf8FromPath(place), error.message()));
            return static_cast<bool>(error);
        };
        const auto reportFolder = base::pathFromUtf8(_command.report).parent_path();
        return !failsFor(folder.absolute) && (_command.report.empty() || !failsFor(reportFolder));
    }

    bool writeReport() const
    {
        const auto error =
            base::writeFile(base::pathFromUtf8(_command.report), _report.text()).error;
        if (error)
            complain("vyr-mtlx: " + writeFailure(_command.report, error.message()));
        return !error;
    }

    const DocumentsCommand& _command;
    const std::vector<Task>& _tasks;
    const char* _things;
    Progress _progress;
    Results _results;
    /// Results that are not printed yet.
    std::string _lines;
    JsonDocument _report;
    JsonNode _entries;
    std::size_t _converted = 0;
    std::size_t _failed = 0;
    std::size_t _warned = 0;
};

} // namespace

batch::Source loadFiles(const DocumentsCommand& command)
{
    return batch::loadFiles(command.files, {command.texturePaths, jobsOf(command)});
}

ExitStatus convertAll(const DocumentsCommand& command, const std::vector<Task>& tasks,
                      const char* things, const batch::OutputFolder& folder, std::size_t workers,
                      const batch::Translate& translate)
{
    Delivery delivery(command, tasks, things);
    const auto deliver = [&delivery](std::size_t step, const Outcome& outcome)
    { delivery.take(step, outcome); };
    batch::Settings settings = command;
    settings.listImages = !command.report.empty();
    return delivery.finish(
        batch::convertAll({translate, deliver, stopRequested}, tasks, folder, settings, workers),
        folder);
}

} // namespace vyr::cli
