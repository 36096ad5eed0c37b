#include <algorithm>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <MaterialXCore/Document.h>

#include <MaterialTranslation/Bakes.h>
#include <MaterialTranslation/Diagnostics.h>
#include <MaterialTranslation/DocumentIO.h>
#include <MaterialTranslation/MaterialXConverter.h>

#include "Console.h"
#include "Json.h"
#include "OrderedRun.h"
#include "Tasks.h"
#include "base/Paths.h"
#include "base/WriteFile.h"

namespace vyr::cli
{
namespace
{

using MaterialTranslation::MaterialXConverter;
using MaterialTranslation::NodeForm;
using MaterialTranslation::ValidationMessage;
using Converters = std::vector<std::unique_ptr<MaterialXConverter>>;

/// Whether the definitions of nodes can be read, where the command needs them; standard error says why
/// not. They are read once, here, before anything is written.
bool definitionsAreThere(const ConvertCommand& command)
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

/// A material's document; null when there is none. The outcome tells what was lost, and why it failed.
/// An exception fails this material, never the run.
MaterialX::DocumentPtr translate(MaterialXConverter& converter, const Task& task, Outcome& outcome)
{
    bool translated = false;
    MaterialX::DocumentPtr document;
    std::string reason = "the material cannot be translated";
    try
    {
        document = MaterialX::createDocument();
        translated = converter.TranslateToMaterialX(*task.material->asset, task.name, document);
    }
    catch (const std::exception& error)
    {
        reason = error.what();
    }
    addDiagnostics(outcome, translated ? "" : reason);
    return translated ? document : nullptr;
}

/// Why the document is invalid; empty when it is not.
std::string invalidity(const MaterialX::DocumentPtr& document, const ConvertCommand& command,
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
           const ConvertCommand& command, Outcome& outcome)
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

Outcome convert(MaterialXConverter& converter, const Task& task, const OutputFolder& folder,
                const ConvertCommand& command)
{
    Outcome outcome;
    outcome.warnings = task.warnings;
    outcome.message = task.refusal;
    if (!task.refusal.empty())
        return outcome;
    if (const MaterialX::DocumentPtr document = translate(converter, task, outcome))
        write(document, task, folder, command, outcome);
    if (!outcome.converted)
        MaterialTranslation::discardLastBakes();
    return outcome;
}

/// Takes the outcomes of a conversion in input order: prints them, counts them, and notes them for
/// the report. Not thread-safe.
class Delivery
{
  public:
    /// Both are borrowed.
    Delivery(const ConvertCommand& command, const std::vector<Task>& tasks)
        : _command(command), _tasks(tasks),
          _progress(!command.quiet && !command.options.verbose, tasks.size())
    {
        _report.root().add("converter", MaterialTranslation::libraryVersion());
        _materials = _report.root().addList("materials");
    }

    void take(std::size_t step, const Outcome& outcome)
    {
        const Task& task = _tasks[step];
        const std::string messages =
            messageLines(task.material->file, subjectOf(*task.material), outcome);
        if (!messages.empty() || Results::onTerminal())
            _progress.clear();
        complainAsIs(messages);
        if (outcome.converted)
            _results.write(outcome.document + '\n');
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
    ExitStatus finish(std::size_t done)
    {
        _progress.clear();
        if (!_command.quiet)
            complain("vyr-mtlx: " + std::to_string(_converted) + " converted, " +
                     std::to_string(_failed) + " failed, " + std::to_string(_warned) +
                     " with warnings");
        if (done < _tasks.size())
        {
            complain("vyr-mtlx: interrupted, " + std::to_string(_tasks.size() - done) + " of " +
                     std::to_string(_tasks.size()) + " materials were not tried");
            return ExitStatus::Interrupted;
        }
        const bool reported = _command.report.empty() || writeReport();
        const bool good = _failed == 0 && (_warned == 0 || !_command.strict);
        return good && reported && _results.delivered() ? ExitStatus::Done : ExitStatus::SomeFailed;
    }

  private:
    void note(const Task& task, const Outcome& outcome)
    {
        const JsonNode entry = _materials.addObject();
        entry.add("id", task.material->id);
        entry.add("name", task.name);
        entry.add("schema", task.material->schema);
        entry.add("file", task.material->file);
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

    bool writeReport() const
    {
        const auto error = base::writeFile(base::pathFromUtf8(_command.report), _report.text());
        if (error)
            complain("vyr-mtlx: " + writeFailure(_command.report, error.message()));
        return !error;
    }

    const ConvertCommand& _command;
    const std::vector<Task>& _tasks;
    Progress _progress;
    Results _results;
    JsonDocument _report;
    JsonNode _materials;
    std::size_t _converted = 0;
    std::size_t _failed = 0;
    std::size_t _warned = 0;
};

std::size_t workersFor(const ConvertCommand& command, std::size_t tasks)
{
    if (command.options.verbose)
        return 1;
    const unsigned wanted = command.jobs ? command.jobs : std::thread::hardware_concurrency();
    return std::clamp<std::size_t>(tasks, 1, std::max(wanted, 1u));
}

/// One converter a worker, made and destroyed on the main thread: each destructor empties a list
/// that all converters share.
Converters makeConverters(const ConvertCommand& command, const OutputFolder& folder,
                          std::size_t count)
{
    MaterialTranslation::ConverterOptions options = command.options;
    options.outputDirectory = base::utf8FromPath(folder.absolute);
    Converters converters(count);
    for (auto& converter : converters)
        converter = std::make_unique<MaterialXConverter>(options);
    return converters;
}

ExitStatus convertAll(const ConvertCommand& command, const std::vector<Task>& tasks,
                      const OutputFolder& folder)
{
    const std::size_t workers = workersFor(command, tasks.size());
    const Converters converters = makeConverters(command, folder, workers);
    // Side by side with other materials a bake is not to take all cores.
    const MaterialTranslation::BakeSettings bakes{.limits = command.limits,
                                                  .threads = workers > 1 ? 1 : 0};
    const auto work = [&](std::size_t worker, std::size_t step)
    {
        MaterialTranslation::setBakeSettings(bakes);
        return convert(*converters[worker], tasks[step], folder, command);
    };

    Delivery delivery(command, tasks);
    const auto deliver = [&delivery](std::size_t step, const Outcome& outcome)
    { delivery.take(step, outcome); };
    return delivery.finish(OrderedRun(tasks.size(), work, deliver).on(workers));
}

} // namespace

ExitStatus run(const ConvertCommand& command)
{
    const std::optional<Source> source = loadFiles(command.files, command.texturePaths);
    if (!source)
        return ExitStatus::WrongUse;
    const std::optional<std::vector<Task>> tasks = makeTasks(command, *source);
    if (!tasks || !filesAreApart(command, *tasks) || !definitionsAreThere(command))
        return ExitStatus::WrongUse;

    finishBeforeStopping();
    const std::optional<OutputFolder> folder = makeOutputFolder(command.output);
    return folder ? convertAll(command, *tasks, *folder) : ExitStatus::WrongUse;
}

} // namespace vyr::cli
