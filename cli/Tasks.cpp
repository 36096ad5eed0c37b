#include "Tasks.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "Console.h"
#include "DocumentNames.h"

namespace vyr::cli
{
namespace
{

bool allExist(const std::vector<std::string>& ids, const assetlib::Library& library)
{
    bool exist = true;
    for (const std::string& id : ids)
    {
        if (library.findMaterial(id))
            continue;
        complain("vyr-mtlx: --asset: no material has the identifier \"" + id + "\"");
        exist = false;
    }
    return exist;
}

using MaterialTranslation::MaterialXConverter;

std::string claim(DocumentNames& names, const std::string& name, const Task& task)
{
    return names.claim(name, subjectOf(*task.material) + " of " + task.material->file);
}

/// Tells the materials that are refused whether names with identifiers are of use: different identifiers
/// may leave equal names.
void adviseIdNames(std::vector<Task>& tasks, MaterialTranslation::ConverterOptions options)
{
    const bool idNames = std::exchange(options.useAssetIdInName, true);
    MaterialXConverter converter(options);
    DocumentNames names;
    for (Task& task : tasks)
    {
        const bool helps =
            claim(names, converter.getMaterialName(*task.material->asset).str(), task).empty();
        if (!task.refusal.empty() && (idNames || helps))
            task.refusal += idNames ? " even with --id-names" : "; --id-names keeps such apart";
    }
}

/// Gives each material its name; the later of two with one name is refused.
void nameTasks(std::vector<Task>& tasks, MaterialXConverter& converter,
               const MaterialTranslation::ConverterOptions& options)
{
    DocumentNames names;
    bool allNamed = true;
    for (Task& task : tasks)
    {
        task.name = converter.getMaterialName(*task.material->asset).str();
        task.refusal = claim(names, task.name, task);
        allNamed = allNamed && task.refusal.empty();
    }
    if (!allNamed)
        adviseIdNames(tasks, options);
}

/// Gives each material the warnings about it and about the textures that it uses.
void attachWarnings(std::vector<Task>& tasks, const std::vector<assetlib::LoadWarning>& warnings)
{
    if (warnings.empty())
        return;
    const char* code = MaterialTranslation::diagnosticCodeName(
        MaterialTranslation::DiagnosticCode::TextureCaseDiffers);
    for (Task& task : tasks)
    {
        const Reach reach = reachOf(*task.material->asset);
        for (const assetlib::LoadWarning& warning : warnings)
        {
            if (reach.ids.contains(warning.asset))
                task.warnings.push_back({code, warning.property, warning.message});
        }
    }
}

} // namespace

std::string subjectOf(const assetlib::Material& material)
{
    return "material \"" + material.id + "\" (" + material.schema + ")";
}

std::optional<std::vector<Task>> makeTasks(const ConvertCommand& command, const Source& source,
                                           MaterialXConverter& converter)
{
    if (!allExist(command.assets, source.library))
        return std::nullopt;
    const std::unordered_set<std::string> selected(command.assets.begin(), command.assets.end());
    std::vector<Task> tasks;
    for (const assetlib::Material& material : source.library.materials())
    {
        if (selected.empty() || selected.contains(material.id))
            tasks.emplace_back().material = &material;
    }
    nameTasks(tasks, converter, command.options);
    attachWarnings(tasks, source.warnings);
    return tasks;
}

} // namespace vyr::cli
