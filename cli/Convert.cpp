#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <MaterialTranslation/Bakes.h>
#include <MaterialTranslation/MaterialXConverter.h>

#include "Console.h"
#include "Documents.h"
#include "base/Paths.h"

namespace vyr::cli
{
namespace
{

using MaterialTranslation::MaterialXConverter;
using Converters = std::vector<std::unique_ptr<MaterialXConverter>>;

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
        const auto* material = std::get<const assetlib::Material*>(task.item);
        translated = converter.TranslateToMaterialX(*material->asset, task.name, document);
    }
    catch (const std::exception& error)
    {
        reason = error.what();
    }
    addDiagnostics(outcome, translated ? "" : reason);
    return translated ? document : nullptr;
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

ExitStatus convertMaterials(const ConvertCommand& command, const std::vector<Task>& tasks,
                            const OutputFolder& folder)
{
    const std::size_t workers = workersFor(command, tasks.size());
    const Converters converters = makeConverters(command, folder, workers);
    // Side by side with other materials a bake is not to take all cores.
    const MaterialTranslation::BakeSettings bakes{.limits = command.limits,
                                                  .threads = workers > 1 ? 1 : 0};
    const auto work = [&](std::size_t worker, const Task& task, Outcome& outcome)
    {
        MaterialTranslation::setBakeSettings(bakes);
        return translate(*converters[worker], task, outcome);
    };
    return convertAll(command, tasks, "materials", folder, workers, work);
}

} // namespace

ExitStatus run(const ConvertCommand& command)
{
    const std::optional<Source> source = loadFiles(command);
    if (!source)
        return ExitStatus::WrongUse;
    const std::optional<std::vector<Task>> tasks = makeTasks(command, *source);
    if (!tasks || !canConvert(command, *tasks, *source))
        return ExitStatus::WrongUse;

    finishBeforeStopping();
    const std::optional<OutputFolder> folder = makeOutputFolder(command.output);
    return folder ? convertMaterials(command, *tasks, *folder) : ExitStatus::WrongUse;
}

} // namespace vyr::cli
