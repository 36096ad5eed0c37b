#include "Tasks.h"

#include <algorithm>
#include <unordered_set>

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

/// Gives each material its name; the later of two with one name is refused.
void nameTasks(std::vector<Task>& tasks, MaterialTranslation::MaterialXConverter& converter,
               bool idNames)
{
    const std::string advice = idNames ? " even with --id-names" : "; --id-names keeps such apart";
    DocumentNames names;
    for (Task& task : tasks)
    {
        task.name = converter.getMaterialName(*task.material->asset).str();
        const std::string& file = task.material->file;
        task.refusal = names.claim(task.name, subjectOf(*task.material) + " of " + file);
        if (!task.refusal.empty())
            task.refusal += advice;
    }
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
                                           MaterialTranslation::MaterialXConverter& converter)
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
    nameTasks(tasks, converter, command.options.useAssetIdInName);
    attachWarnings(tasks, source.warnings);
    return tasks;
}

} // namespace vyr::cli
