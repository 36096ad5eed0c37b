#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "CommandLine.h"
#include "Console.h"
#include "StarterLibrary.h"
#include "TextureSets.h"
#include "base/Paths.h"
#include "base/WriteFile.h"
#include "batch/Output.h"

// A library file of the textures that lie in a folder, for its user to go on with.
namespace vyr::cli
{
namespace
{

namespace fs = std::filesystem;
/// All files below a folder, relative to it; links to folders are not followed.
/// @return nothing when it cannot be read; standard error then says why.
std::optional<std::vector<fs::path>> filesBelow(const std::string& folder)
{
    const fs::path root = base::pathFromUtf8(folder);
    std::vector<fs::path> files;
    std::error_code error;
    fs::recursive_directory_iterator entry(root, error);
    for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error))
    {
        const fs::path path = entry->path().lexically_relative(root);
        const bool isHidden = base::utf8FromPath(path.filename()).starts_with('.');
        if (isHidden)
            entry.disable_recursion_pending();
        else if (base::isFile(entry->path()))
            files.push_back(path);
    }
    if (!error)
        return files;
    complain("vyr-mtlx: " + folder + ": " + error.message());
    return std::nullopt;
}

void complainOf(const fs::path& folder, const std::vector<ImageRemark>& images,
                const std::string& what)
{
    for (const auto& [path, text] : images)
        complain(base::utf8FromPath(folder / path) + ": " + what + text);
}

} // namespace

ExitStatus run(const InitCommand& command)
{
    const fs::path folder = base::pathFromUtf8(command.folder);
    const fs::path file =
        command.output.empty() ? folder / "materials.json" : base::pathFromUtf8(command.output);
    const std::string shown = base::utf8FromPath(file);
    std::optional<std::vector<fs::path>> files = filesBelow(command.folder);
    if (!files)
        return ExitStatus::WrongUse;
    std::error_code ignored;
    if (fs::exists(fs::symlink_status(file, ignored)))
    {
        complain("vyr-mtlx: " + shown +
                 " is there already and is not replaced; --output names another file");
        return ExitStatus::WrongUse;
    }

    TextureSets found = findTextureSets(std::move(*files),
                                        base::utf8FromPath(base::tidyAbsolute(folder).filename()));
    StarterLibrary starter(folder, base::tidyAbsolute(file).parent_path());
    for (TextureSet& set : found.sets)
        starter.add(std::move(set));
    complainOf(folder, starter.remarks(), "");
    complainOf(folder, found.left, "not used: ");
    complainOf(folder, starter.left(), "not used: ");
    if (starter.count() == 0)
    {
        complain("vyr-mtlx: " + command.folder +
                 " has no images whose names tell what they show, such as "
                 "\"oak_color.png\" and \"oak_roughness.png\"");
        return ExitStatus::WrongUse;
    }
    finishBeforeStopping();
    if (const std::error_code error = base::writeFile(file, starter.text()).error)
    {
        complain("vyr-mtlx: " + batch::writeFailure(shown, error.message()));
        return ExitStatus::SomeFailed;
    }
    complain("vyr-mtlx: " + std::to_string(starter.count()) + " materials, " +
             std::to_string(found.left.size() + starter.left().size()) +
             " images not used; the sizes of the images are to be filled in");
    Results results;
    results.write(shown + '\n');
    return results.delivered() ? ExitStatus::Done : ExitStatus::SomeFailed;
}

} // namespace vyr::cli
