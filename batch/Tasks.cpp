#include "batch/Tasks.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include <MaterialTranslation/Diagnostics.h>
#include <MaterialTranslation/MaterialXConverter.h>

#include "base/Paths.h"
#include "base/Text.h"
#include "batch/Refusal.h"

namespace vyr::batch
{
namespace
{

namespace fs = std::filesystem;
using kelvor::platform::assets::IAssetInstance;
using MaterialTranslation::ConverterOptions;
using MaterialTranslation::MaterialXConverter;

void requireAll(const std::vector<std::string>& ids, const assetlib::Library& library)
{
    std::vector<std::string> missing;
    for (const std::string& id : ids)
        if (!library.findMaterial(id))
            missing.push_back("no material has the identifier \"" + id + '"');
    if (!missing.empty())
        throw UnknownMaterial(std::move(missing));
}

/// Keeps apart the documents that are written into one folder.
class DocumentNames
{
  public:
    explicit DocumentNames(std::size_t expected) { _owners.reserve(expected); }

    /// Takes a name for a material or overlay.
    /// @return why the name cannot be had, empty when it is taken: another one has it (case does not
    ///         count, since some file systems ignore it), or some system reserves it for a device.
    std::string claim(const std::string& name, const Item& item)
    {
        if (base::isDeviceName(name))
            return "some systems reserve the name \"" + name + "\" for a device";
        const auto [entry, isNew] = _owners.try_emplace(base::foldCase(name), item);
        return isNew ? std::string()
                     : "the name \"" + name + "\" is that of " + subjectOf(entry->second) + " of " +
                           fileOf(entry->second) + " too";
    }

  private:
    /// By the name without regard to case.
    std::unordered_map<std::string, Item> _owners;
};

const IAssetInstance& assetOf(const Task& task)
{
    return *std::get<const assetlib::Material*>(task.item)->asset;
}

/// The images that a material or overlay refers to.
std::vector<std::string> referencesOf(const Item& item)
{
    if (const auto* overlay = std::get_if<const assetlib::Overlay*>(&item))
        return imagesOf(**overlay);
    return imagesOf(*std::get<const assetlib::Material*>(item)->asset);
}

/// Tells the materials that are refused whether names with identifiers are of use: different identifiers
/// may leave equal names.
void adviseIdNames(std::vector<Task>& tasks, ConverterOptions options)
{
    const bool idNames = std::exchange(options.useAssetIdInName, true);
    MaterialXConverter converter(options);
    DocumentNames names(tasks.size());
    for (Task& task : tasks)
    {
        const bool helps =
            names.claim(converter.getMaterialName(assetOf(task)).str(), task.item).empty();
        if (!task.refusal.empty() && (idNames || helps))
            task.refusal += idNames ? " even with --id-names" : "; --id-names keeps such apart";
    }
}

/// Gives each material its name; the later of two with one name is refused.
void nameTasks(std::vector<Task>& tasks, ConverterOptions options)
{
    MaterialXConverter converter(options);
    DocumentNames names(tasks.size());
    bool allNamed = true;
    for (Task& task : tasks)
    {
        task.name = converter.getMaterialName(assetOf(task)).str();
        task.refusal = names.claim(task.name, task.item);
        allNamed = allNamed && task.refusal.empty();
    }
    if (!allNamed)
        adviseIdNames(tasks, options);
}

/// The code of what loading warns of.
std::string caseDiffers()
{
    return MaterialTranslation::diagnosticCodeName(
        MaterialTranslation::DiagnosticCode::TextureCaseDiffers);
}

/// Gives each material the warnings about it and about the textures that it uses.
void attachWarnings(std::vector<Task>& tasks, const std::vector<assetlib::LoadWarning>& warnings)
{
    if (warnings.empty())
        return;
    for (Task& task : tasks)
    {
        const std::unordered_set<std::string> ids = idsOf(assetOf(task));
        for (const assetlib::LoadWarning& warning : warnings)
            if (ids.contains(warning.asset))
                task.warnings.push_back({caseDiffers(), warning.property, warning.message});
    }
}

/// A place, and where the file there lies if it is a link.
using Places = std::pair<fs::path, fs::path>;

Places placesOf(const std::string& file)
{
    const fs::path place = placeOf(base::pathFromUtf8(file));
    std::error_code error;
    const fs::path target = fs::canonical(place, error);
    return {place, error ? place : target};
}

class Preflight
{
  public:
    /// The tasks are borrowed.
    Preflight(const Settings& settings, const std::vector<Task>& tasks, const Source& source)
        : _tasks(tasks), _folder(placeOf(base::pathFromUtf8(settings.output) / "*").parent_path()),
          _copies(settings.options.copyTextures)
    {
        for (const std::string& file : source.files)
        {
            const auto [place, target] = placesOf(file);
            for (const fs::path& input : {place, target})
            {
                _inputs.push_back(input);
                keep(input, "an input file");
            }
        }
        if (settings.report.empty())
            return;
        _report = placeOf(base::pathFromUtf8(settings.report));
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

    /// What is wrong with what a task writes; empty for nothing.
    std::string problemOf(const Task& task)
    {
        const auto isInside = [&](const fs::path& file)
        { return file.parent_path() == _folder / base::pathFromUtf8(task.name); };
        // Mostly there is nothing that could be replaced, and then no path is made.
        if (!_kept.empty())
            if (const auto kept = _kept.find(documentFile(task.name).native()); kept != _kept.end())
                return "its document would replace " + kept->second;
        if (_report && isInside(*_report))
            return "the report would lie in the folder of its images";
        if (_copies && std::ranges::any_of(_inputs, isInside))
            return "an input file lies in the folder where its images are gathered";
        return {};
    }

    /// What is wrong with the images of a material or overlay of the files, also one that is not converted. They
    /// are inputs like a library, and must not lie where another one's images go, which might replace them.
    std::string imageProblem(const Item& item)
    {
        for (const std::string& reference : referencesOf(item))
        {
            const auto& [image, target] = placesOfImage(reference);
            for (const fs::path& place : {image, target})
            {
                if (place == _report)
                    return "the report would replace its image " + reference;
                const fs::path folder = place.parent_path();
                if (folder == _folder && place.extension() == ".mtlx" &&
                    owners().contains(base::utf8FromPath(place.stem())))
                    return "a document would replace its image " + reference;
                if (folder.parent_path() != _folder)
                    continue;
                const auto owner = owners().find(base::utf8FromPath(folder.filename()));
                if (owner != owners().end() && owner->second != item)
                    return "its image " + reference + " lies in the folder of another material";
            }
        }
        return {};
    }

  private:
    /// Many materials share an image, and to find its places asks the file system.
    const Places& placesOfImage(const std::string& reference)
    {
        const auto [entry, isNew] = _images.try_emplace(reference);
        if (isNew)
            entry->second = placesOf(reference);
        return entry->second;
    }

    /// What is converted, by the names of documents and folders; the first of each name has them.
    const std::unordered_map<std::string, Item>& owners()
    {
        if (_owners.empty())
            for (const Task& task : _tasks)
                _owners.emplace(task.name, task.item);
        return _owners;
    }

    void keep(const fs::path& place, const std::string& what)
    {
        if (place.parent_path() == _folder)
            _kept.try_emplace(place.filename().native(), what);
    }

    const std::vector<Task>& _tasks;
    fs::path _folder;
    std::vector<fs::path> _inputs;
    bool _copies;
    std::optional<fs::path> _report;
    std::unordered_map<std::string, Item> _owners;
    std::unordered_map<std::string, Places> _images;
    /// Files in the output folder that are not to be replaced, and what they are.
    std::unordered_map<fs::path::string_type, std::string> _kept;
};

} // namespace

const std::string& fileOf(const Item& item)
{
    return std::visit([](const auto* i) -> const std::string& { return i->file; }, item);
}

std::string subjectOf(const Item& item)
{
    return std::visit([](const auto* i) { return subjectOf(*i); }, item);
}

std::vector<Task> overlayTasks(const Source& source)
{
    std::vector<Task> tasks;
    DocumentNames names(source.library.overlays().size());
    for (const assetlib::Overlay& overlay : source.library.overlays())
    {
        Task& task = tasks.emplace_back();
        task.item = &overlay;
        task.name = base::plainName(overlay.name);
        task.refusal = task.name.empty() ? "the name has no ASCII letter or digit"
                                         : names.claim(task.name, task.item);
        for (const assetlib::LoadWarning& warning : source.warnings)
            if (warning.file == overlay.file && warning.pointer.starts_with(overlay.pointer + "/"))
                task.warnings.push_back({caseDiffers(), warning.property, warning.message});
    }
    return tasks;
}

std::vector<Task> materialTasks(const Source& source, const ConverterOptions& options,
                                const std::vector<std::string>& assets)
{
    requireAll(assets, source.library);
    const std::unordered_set<std::string> selected(assets.begin(), assets.end());
    std::vector<Task> tasks;
    tasks.reserve(selected.empty() ? source.library.materials().size() : selected.size());
    for (const assetlib::Material& material : source.library.materials())
        if (selected.empty() || selected.contains(material.id))
            tasks.emplace_back().item = &material;
    nameTasks(tasks, options);
    attachWarnings(tasks, source.warnings);
    return tasks;
}

std::set<fs::path> imagePlaces(const Source& source)
{
    std::set<fs::path> places;
    const auto add = [&](const auto& items)
    {
        for (const auto& item : items)
            for (const std::string& reference : referencesOf(&item))
            {
                const auto [place, target] = placesOf(reference);
                places.insert({place, target});
            }
    };
    add(source.library.materials());
    add(source.library.overlays());
    return places;
}

void checkFilesAreApart(const Settings& settings, const std::vector<Task>& tasks,
                        const Source& source)
{
    const auto require = [](const auto& subject, const std::string& problem)
    {
        if (!problem.empty())
            throw Refusal(subject() + ": " + problem);
    };
    Preflight preflight(settings, tasks, source);
    require([&] { return "--report " + settings.report; }, preflight.reportProblem());
    for (const Task& task : tasks)
        require([&] { return subjectOf(task.item); }, preflight.problemOf(task));
    const auto requireAll = [&](const auto& items)
    {
        for (const auto& item : items)
            require([&] { return subjectOf(item); }, preflight.imageProblem(&item));
    };
    requireAll(source.library.materials());
    requireAll(source.library.overlays());
}

} // namespace vyr::batch
