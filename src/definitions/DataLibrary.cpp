#include "definitions/DataLibrary.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <stdexcept>

#include <MaterialXFormat/Util.h>

#include "base/Paths.h"
#include "base/SharedLibrary.h"

namespace vyr::MaterialTranslation::definitions
{

namespace fs = std::filesystem;
namespace mx = MaterialX;

namespace
{

template <class Function> fs::path folderOf(Function* function)
{
    return base::folderOfCode(reinterpret_cast<const void*>(function));
}

bool isFolder(const fs::path& path)
{
    std::error_code error;
    return fs::is_directory(path, error);
}

fs::path expectedStandard()
{
    const fs::path materialX = folderOf(&MaterialX::getVersionString);
    return materialX.empty() ? fs::path()
                             : (materialX / VYR_STANDARD_FROM_MATERIALX).lexically_normal();
}

/// Installed trees have their libraries at different depths below the prefix.
fs::path expectedKvor()
{
    fs::path folder = folderOf(&definitionsOf);
    for (fs::path below; folder != below; below = folder, folder = folder.parent_path())
    {
        const fs::path candidate = folder / VYR_KVOR_FROM_PREFIX;
        if (isFolder(candidate))
            return candidate;
    }
    return {};
}

fs::path choose(const fs::path& chosen, fs::path (*expected)(), const char* what)
{
    if (!chosen.empty())
        return fs::absolute(chosen);
    fs::path folder = expected();
    if (folder.empty() || !isFolder(folder))
        throw std::runtime_error(std::string(what) + " are not where they are expected" +
                                 (folder.empty() ? "" : " (" + base::utf8FromPath(folder) + ")") +
                                 "; setDefinitionFolders says where they are");
    return folder;
}

/// The folders, with every empty one replaced by the one where it is expected.
DefinitionFolders found(const DefinitionFolders& chosen)
{
    return {choose(chosen.standard, expectedStandard, "MaterialX's standard definitions"),
            choose(chosen.kvor, expectedKvor, "the definitions of the kvor nodes")};
}

/// In an order that does not depend on the file system.
std::vector<fs::path> definitionFiles(const fs::path& folder)
{
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder))
        if (entry.path().extension() == ".mtlx")
            files.push_back(entry.path());
    std::ranges::sort(files);
    return files;
}

/// @param witness a file that only the right folder has.
mx::DocumentPtr readFolder(const fs::path& folder, const char* witness)
{
    const std::string shown = base::utf8FromPath(folder);
    if (std::error_code error; !fs::exists(folder / witness, error))
        throw std::runtime_error("no node definitions in " + shown + ": it has no " + witness);
    mx::DocumentPtr document = mx::createDocument();
    try
    {
        for (const fs::path& file : definitionFiles(folder))
            mx::loadLibrary(mx::FilePath(base::utf8FromPath(file)), document);
    }
    catch (const std::exception& error)
    {
        throw std::runtime_error("cannot read the node definitions in " + shown + ": " +
                                 error.what());
    }
    return document;
}

/// With the source noted, writing a document would turn what was copied into it into a reference to a
/// file of this machine.
void forgetSource(const mx::DocumentPtr& document)
{
    for (const mx::ElementPtr& child : document->getChildren())
        child->setSourceUri(mx::EMPTY_STRING);
}

/// "none" takes values as they are; the others are those that MaterialX can transform, and the one
/// that it transforms them to.
std::vector<std::string> colorSpacesOf(const mx::Document& library)
{
    std::vector<std::string> names = {"none", "lin_rec709"};
    const std::string suffix = toLinearSuffix;
    for (const mx::NodeDefPtr& definition : library.getNodeDefs())
    {
        const std::string& node = definition->getNodeString();
        if (!mx::stringEndsWith(node, suffix))
            continue;
        const std::string name = node.substr(0, node.size() - suffix.size());
        if (std::ranges::find(names, name) == names.end())
            names.push_back(name);
    }
    return names;
}

std::shared_ptr<const Definitions> read(const DefinitionFolders& folders, DefinitionSet set)
{
    auto definitions = std::make_shared<Definitions>();
    const mx::DocumentPtr library = readFolder(folders.standard, "stdlib/stdlib_defs.mtlx");
    if (set == DefinitionSet::All)
    {
        const mx::DocumentPtr kvor = readFolder(folders.kvor, "kvor_textures_defs.mtlx");
        library->importLibrary(kvor);
        forgetSource(kvor);
        definitions->kvor = kvor;
    }
    for (const mx::NodeDefPtr& definition : library->getNodeDefs())
        definitions->categories.insert(definition->getQualifiedName(definition->getNodeString()));
    definitions->colorSpaces = colorSpacesOf(*library);
    definitions->library = library;
    return definitions;
}

struct Shared
{
    std::mutex mutex;
    DefinitionFolders chosen;
    std::array<std::shared_ptr<const Definitions>, 2> sets;
};

Shared& shared()
{
    static Shared state;
    return state;
}

} // namespace

bool Definitions::knowsColorSpace(const std::string& name) const
{
    return std::ranges::find(colorSpaces, name) != colorSpaces.end();
}

std::shared_ptr<const Definitions> definitionsOf(DefinitionSet set)
{
    Shared& state = shared();
    const std::lock_guard lock(state.mutex);
    auto& definitions = state.sets.at(static_cast<std::size_t>(set));
    if (!definitions)
        definitions = read(found(state.chosen), set);
    return definitions;
}

} // namespace vyr::MaterialTranslation::definitions

namespace vyr::MaterialTranslation
{

void setDefinitionFolders(const DefinitionFolders& folders)
{
    definitions::Shared& state = definitions::shared();
    const std::lock_guard lock(state.mutex);
    state.chosen = folders;
    state.sets = {};
}

DefinitionFolders definitionFolders()
{
    definitions::Shared& state = definitions::shared();
    const std::lock_guard lock(state.mutex);
    return definitions::found(state.chosen);
}

MaterialX::ConstDocumentPtr definitionLibrary(DefinitionSet set)
{
    return definitions::definitionsOf(set)->library;
}

} // namespace vyr::MaterialTranslation
