#include <vector>

#include "Console.h"
#include "Documents.h"

namespace vyr::cli
{

ExitStatus run(const ConvertCommand& command)
{
    const batch::Source source = loadFiles(command);
    const std::vector<batch::Task> tasks =
        batch::materialTasks(source, command.options, command.assets);
    checkCanConvert(command, tasks, source);

    finishBeforeStopping();
    const batch::OutputFolder folder = batch::makeOutputFolder(command.output);
    const std::size_t workers = batch::workersFor(command, tasks.size());
    const batch::MaterialTranslators translators(command, folder, workers);
    const auto translate = [&](std::size_t worker, const batch::Task& task, batch::Outcome& outcome)
    { return translators.translate(worker, task, outcome); };
    return convertAll(command, tasks, source, "materials", folder, workers, translate);
}

ExitStatus run(const OverlayCommand& command)
{
    const batch::Source source = loadFiles(command);
    const std::vector<batch::Task> tasks = batch::overlayTasks(source);
    checkCanConvert(command, tasks, source);

    finishBeforeStopping();
    const batch::OutputFolder folder = batch::makeOutputFolder(command.output);
    return convertAll(command, tasks, source, "overlays", folder,
                      batch::workersFor(command, tasks.size()),
                      batch::overlayTranslation(command, folder));
}

} // namespace vyr::cli
