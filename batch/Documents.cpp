#include "batch/Documents.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <iterator>
#include <thread>

#include <MaterialTranslation/Bakes.h>
#include <MaterialTranslation/DocumentIO.h>

#include "base/Paths.h"
#include "batch/OrderedRun.h"
#include "batch/Refusal.h"

namespace vyr::batch
{
namespace
{

using MaterialTranslation::NodeForm;
using MaterialTranslation::ValidationMessage;

/// Tells what is wrong in a document, if anything is.
void check(const MaterialX::DocumentPtr& document, const Settings& settings,
           const OutputFolder& folder, Outcome& outcome)
{
    MaterialTranslation::ValidationOptions options;
    options.searchFolders = {folder.absolute};
    // The other forms are for readers that have MaterialX's definitions only.
    if (settings.nodes != NodeForm::Reference)
        options.definitions = MaterialTranslation::DefinitionSet::Standard;
    for (const ValidationMessage& message : validateDocument(document, options))
    {
        outcome.message +=
            (outcome.message.empty() ? "invalid document: " : "; ") + withPath(message);
        outcome.errors.push_back({validationCodeName(message.code), message.path, message.text});
    }
}

/// The image files that a document names, each once.
std::vector<std::string> imagesOf(const MaterialX::DocumentPtr& document)
{
    std::vector<std::string> paths;
    for (const MaterialX::InputPtr& input : MaterialTranslation::fileInputs(document))
        if (const std::string& path = input->getValueString();
            std::ranges::find(paths, path) == paths.end())
            paths.push_back(path);
    return paths;
}

/// Brings a translated document into the form that is asked for and checks it when that is asked for too.
std::optional<std::string> finish(const MaterialX::DocumentPtr& document,
                                  const OutputFolder& folder, const Settings& settings,
                                  Outcome& outcome)
{
    if (!settings.absolutePaths)
        makeImagePathsRelative(document, folder);
    if (settings.nodes != NodeForm::Reference)
        for (const ValidationMessage& message : applyNodeForm(document, settings.nodes))
            outcome.warnings.push_back(
                {validationCodeName(message.code), message.path, message.text});
    if (settings.validate)
        check(document, settings, folder, outcome);
    if (!outcome.message.empty())
        return std::nullopt;
    if (settings.listImages)
        outcome.textures = imagesOf(document);
    return MaterialTranslation::documentToXml(document);
}

/// Notes the images in the folder of a document that were written for it.
void noteImages(const std::filesystem::path& folder, Outcome& outcome)
{
    const MaterialTranslation::MaterialImages images = MaterialTranslation::lastImages();
    outcome.baked = std::ssize(images.baked);
    outcome.kept = std::ssize(images.kept);
    for (const auto* list : {&images.baked, &images.kept, &images.gathered})
        for (const std::filesystem::path& image : *list)
            if (image.parent_path() == folder)
                outcome.written.images.push_back(WrittenImage::at(image, list == &images.gathered));
}

/// The identifier that the document of a task tells; those of overlays tell none.
std::string assetOf(const Task& task)
{
    const auto* material = std::get_if<const assetlib::Material*>(&task.item);
    return material ? (*material)->id : std::string();
}

/// Why the document that is there is not to be replaced; empty when it may be.
std::string ownerProblem(const Task& task, const OutputFolder& folder)
{
    const std::filesystem::path file = documentFile(task.name);
    const std::string other =
        MaterialTranslation::otherAssetOf(folder.absolute / file, assetOf(task));
    return other.empty()
               ? std::string()
               : base::utf8FromPath(folder.shown / file) + " is the document of the asset \"" +
                     other + "\"; --replace replaces it";
}

Outcome convert(const Run& run, std::size_t worker, const Task& task, const OutputFolder& folder,
                const Settings& settings)
{
    Outcome outcome;
    // Before the translation, which would replace the images of the other asset.
    if (task.refusal.empty() && !settings.replace)
        outcome.message = ownerProblem(task, folder);
    if (!outcome.message.empty())
        return outcome;
    if (const auto text = makeText(run.translate, worker, task, folder, settings, outcome))
        writeDocument(folder.shown / documentFile(task.name), *text,
                      settings.anew ? base::SameBytes::AreWritten : base::SameBytes::Stay, outcome);
    if (outcome.converted)
        noteImages(folder.absolute / base::pathFromUtf8(task.name), outcome);
    else if (task.refusal.empty())
        MaterialTranslation::discardLastBakes();
    return outcome;
}

} // namespace

void checkCanConvert(const Settings& settings, const std::vector<Task>& tasks, const Source& source)
{
    checkFilesAreApart(settings, tasks, source);
    // They are read once, here, before anything is written.
    try
    {
        if (settings.validate || settings.nodes != NodeForm::Reference)
            MaterialTranslation::definitionLibrary();
    }
    catch (const std::exception& error)
    {
        throw Refusal(error.what());
    }
}

unsigned jobsOf(const Settings& settings)
{
    if (settings.options.verbose)
        return 1;
    return std::max(settings.jobs ? settings.jobs : std::thread::hardware_concurrency(), 1U);
}

std::size_t workersFor(const Settings& settings, std::size_t tasks)
{
    return std::clamp<std::size_t>(tasks, 1, jobsOf(settings));
}

std::optional<std::string> makeText(const Translate& translate, std::size_t worker,
                                    const Task& task, const OutputFolder& folder,
                                    const Settings& settings, Outcome& outcome)
{
    outcome.warnings = task.warnings;
    outcome.message = task.refusal;
    if (!task.refusal.empty())
        return std::nullopt;
    try
    {
        if (const MaterialX::DocumentPtr document = translate(worker, task, outcome))
            return finish(document, folder, settings, outcome);
    }
    catch (const std::exception& error)
    {
        outcome.message =
            writeFailure(base::utf8FromPath(folder.shown / documentFile(task.name)), error.what());
    }
    return std::nullopt;
}

std::size_t convertAll(const Run& run, const std::vector<Task>& tasks, const OutputFolder& folder,
                       const Settings& settings, std::size_t workers)
{
    const auto work = [&](std::size_t worker, std::size_t step)
    { return convert(run, worker, tasks[step], folder, settings); };
    return OrderedRun(tasks.size(), work, run.deliver, run.stop).on(workers);
}

} // namespace vyr::batch
