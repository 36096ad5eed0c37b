#include "Documents.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <thread>
#include <utility>

#include <MaterialTranslation/Bakes.h>
#include <MaterialTranslation/Diagnostics.h>
#include <MaterialTranslation/DocumentIO.h>

#include "Console.h"
#include "Json.h"
#include "OrderedRun.h"
#include "base/Paths.h"
#include "base/WriteFile.h"

namespace vyr::cli
{
namespace
{

using MaterialTranslation::NodeForm;
using MaterialTranslation::ValidationMessage;

/// Whether the definitions of nodes can be read, where the command needs them; standard error says why
/// not. They are read once, here, before anything is written.
bool definitionsAreThere(const DocumentsCommand& command)
{
    try
    {
        if (command.validate || command.nodes != NodeForm::Reference)
            MaterialTranslation::definitionLibrary();
        return true;
    }
    catch (const std::exception& error)
    {
        complain(std::string("vyr-mtlx: ") + error.what());
        return false;
    }
}

/// Why the document is invalid; empty when it is not.
std::string invalidity(const MaterialX::DocumentPtr& document, const DocumentsCommand& command,
                       const OutputFolder& folder)
{
    MaterialTranslation::ValidationOptions options;
    options.searchFolders = {folder.absolute};
    // The other forms are for readers that have MaterialX's definitions only.
    if (command.nodes != NodeForm::Reference)
        options.definitions = MaterialTranslation::DefinitionSet::Standard;
    std::string all;
    for (const ValidationMessage& message : validateDocument(document, options))
        all += (all.empty() ? "invalid document: " : "; ") + withPath(message);
    return all;
}

/// The images that a document names, each once.
std::vector<std::string> imagesOf(const MaterialX::DocumentPtr& document)
{
    std::vector<std::string> paths;
    for (const MaterialX::InputPtr& input : MaterialTranslation::fileInputs(document))
        if (const std::string& path = input->getValueString();
            std::ranges::find(paths, path) == paths.end())
            paths.push_back(path);
    return paths;
}

/// Brings a translated document into the form that the command asks for, checks it when that is asked for
/// too, and writes it.
void write(const MaterialX::DocumentPtr& document, const Task& task, const OutputFolder& folder,
           const DocumentsCommand& command, Outcome& outcome)
{
    const std::filesystem::path file = folder.shown / documentFile(task.name);
    try
    {
        if (!command.absolutePaths)
            makeImagePathsRelative(document, folder);
        if (command.nodes != NodeForm::Reference)
            for (const ValidationMessage& message : applyNodeForm(document, command.nodes))
                outcome.warnings.push_back(
                    {validationCodeName(message.code), message.path, message.text});
        const std::string problems =
            command.validate ? invalidity(document, command, folder) : std::string();
        if (problems.empty())
            writeDocument(file, MaterialTranslation::documentToXml(document), outcome);
        else
            outcome.message += problems;
        if (outcome.converted && !command.report.empty())
            outcome.textures = imagesOf(document);
    }
    catch (const std::exception& error)
    {
        outcome.message = writeFailure(base::utf8FromPath(file), error.what());
    }
}

Outcome convert(const Translate& translate, std::size_t worker, const Task& task,
                const OutputFolder& folder, const DocumentsCommand& command)
{
    Outcome outcome;
    outcome.warnings = task.warnings;
    outcome.message = task.refusal;
    if (!task.refusal.empty())
        return outcome;
    if (const MaterialX::DocumentPtr document = translate(worker, task, outcome))
        write(document, task, folder, command, outcome);
    if (!outcome.converted)
        MaterialTranslation::discardLastBakes();
    return outcome;
}

/// How many threads the command may use.
unsigned jobsOf(const DocumentsCommand& command)
{
    if (command.options.verbose)
        return 1;
    return std::max(command.jobs ? command.jobs : std::thread::hardware_concurrency(), 1U);
}

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
    entry.add("type", typeName(overlay));
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
            isSilent ? "" : messageLines(fileOf(task.item), subjectOf(task.item), outcome);
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
    ExitStatus finish(std::size_t done, const OutputFolder& folder)
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
        entry.add("file", fileOf(task.item));
        entry.add("status", outcome.converted ? "converted" : "failed");
        entry.addOrNull("document", outcome.document);
        entry.add("textures", outcome.textures);
        entry.addOrNull("message", outcome.message);
        const JsonNode warnings = entry.addList("warnings");
        for (const Warning& warning : outcome.warnings)
        {
            const JsonNode object = warnings.addObject();
            object.add("code", warning.code);
            object.add("property", warning.property);
            object.add("text", warning.text);
        }
    }

    /// What was told to be done outlives a power cut. The report may be on another disk.
    bool reachDisk(const OutputFolder& folder) const
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
        const auto error = base::writeFile(base::pathFromUtf8(_command.report), _report.text());
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

std::optional<Source> loadFiles(const DocumentsCommand& command)
{
    return loadFiles(command.files, {command.texturePaths, jobsOf(command)});
}

std::size_t workersFor(const DocumentsCommand& command, std::size_t tasks)
{
    return std::clamp<std::size_t>(tasks, 1, jobsOf(command));
}

bool canConvert(const DocumentsCommand& command, const std::vector<Task>& tasks,
                const Source& source)
{
    return filesAreApart(command, tasks, source) && definitionsAreThere(command);
}

ExitStatus convertAll(const DocumentsCommand& command, const std::vector<Task>& tasks,
                      const char* things, const OutputFolder& folder, std::size_t workers,
                      const Translate& translate)
{
    const auto work = [&](std::size_t worker, std::size_t step)
    { return convert(translate, worker, tasks[step], folder, command); };
    Delivery delivery(command, tasks, things);
    const auto deliver = [&delivery](std::size_t step, const Outcome& outcome)
    { delivery.take(step, outcome); };
    return delivery.finish(OrderedRun(tasks.size(), work, deliver).on(workers), folder);
}

} // namespace vyr::cli
