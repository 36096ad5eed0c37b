#include <algorithm>
#include <exception>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <MaterialXCore/Document.h>

#include <MaterialTranslation/Bakes.h>
#include <MaterialTranslation/DocumentIO.h>
#include <MaterialTranslation/MaterialXConverter.h>

#include "Commands.h"
#include "Delivery.h"
#include "DocumentForm.h"
#include "DocumentNames.h"
#include "ImagePaths.h"
#include "Interruption.h"
#include "OrderedRun.h"
#include "Paths.h"
#include "Preflight.h"
#include "Source.h"
#include "Tasks.h"

namespace vyr::cli
{
namespace
{

using MaterialTranslation::MaterialXConverter;
using Converters = std::vector<std::unique_ptr<MaterialXConverter>>;

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
    options.outputDirectory = utf8FromPath(folder.absolute);
    Converters converters(count);
    for (auto& converter : converters)
        converter = std::make_unique<MaterialXConverter>(options);
    return converters;
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
    addDiagnostics(outcome);
    if (!translated && outcome.message.empty())
        outcome.message = reason;
    return translated ? document : nullptr;
}

void write(const MaterialX::DocumentPtr& document, const Task& task, const OutputFolder& folder,
           const ConvertCommand& command, Outcome& outcome)
{
    const std::filesystem::path file = folder.shown / documentFile(task.name);
    const std::string shown = utf8FromPath(file);
    try
    {
        if (!command.absolutePaths)
            makeImagePathsRelative(imageInputs(*document), folder);
        if (!bringIntoForm(document, command, folder, outcome))
            return;
        MaterialTranslation::writeDocumentFile(document, file);
        outcome.converted = true;
        outcome.document = shown;
        if (!command.report.empty())
            outcome.textures = imagePaths(imageInputs(*document));
    }
    catch (const std::exception& error)
    {
        outcome.message = writeFailure(shown, error);
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
    return outcome;
}

ExitStatus convertAll(const ConvertCommand& command, const std::vector<Task>& tasks,
                      const OutputFolder& folder)
{
    const std::size_t workers = workersFor(command, tasks.size());
    const Converters converters = makeConverters(command, folder, workers);
    // Side by side with other materials a bake is not to take all cores.
    const MaterialTranslation::BakeSettings bakes{.limits = {}, .threads = workers > 1 ? 1 : 0};
    const Work work = [&](std::size_t worker, std::size_t step)
    {
        MaterialTranslation::setBakeSettings(bakes);
        return convert(*converters[worker], tasks[step], folder, command);
    };

    Delivery delivery(command, tasks);
    const Deliver deliver = [&delivery](std::size_t step, const Outcome& outcome)
    { delivery.take(step, outcome); };
    return delivery.finish(runInOrder(tasks.size(), workers, work, deliver));
}

} // namespace

ExitStatus run(const ConvertCommand& command)
{
    const std::optional<Source> source = loadFiles(command.files, command.texturePaths);
    if (!source)
        return ExitStatus::WrongUse;
    MaterialTranslation::ConverterOptions options = command.options;
    MaterialXConverter namer(options);
    const std::optional<std::vector<Task>> tasks = makeTasks(command, *source, namer);
    if (!tasks || !filesAreApart(command, *tasks))
        return ExitStatus::WrongUse;
    if (!definitionsAreThere(command))
        return ExitStatus::WrongUse;

    finishBeforeStopping();
    const std::optional<OutputFolder> folder = makeOutputFolder(command.output);
    return folder ? convertAll(command, *tasks, *folder) : ExitStatus::WrongUse;
}

} // namespace vyr::cli
