#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "batch/Output.h"

/// @file
/// What runs wrote into an output folder, so that a later one can remove what is not needed any more.
///
/// For each asset file the folder has a list, ".vyr-mtlx-<hash>.json", whose name comes from what is converted and
/// from the way to the asset file. A document is told by the hash of its text, a bake by that of its bytes, a gathered
/// copy by size and time, which is its source's. A list that is lost, or that two runs at once wrote, only leaves
/// files where they are.
namespace vyr::cli
{

class EarlierRuns
{
  public:
    using InUse = std::function<bool(const std::filesystem::path& image)>;

    /// @param folder  borrowed.
    /// @param things  what is converted: "materials" or "overlays".
    /// @param files   the asset files, as they were named; standard input has no list.
    EarlierRuns(const batch::OutputFolder& folder, const char* things,
                const std::vector<std::string>& files);

    /// Notes what this run wrote for something of an asset file.
    void note(const std::string& file, const std::string& name, batch::WrittenDocument document);

    /// Removes what earlier runs wrote for the asset files under names that there are no more, if nobody has changed
    /// it since and no other list names it. Standard error tells what stays for being changed.
    /// @param names  all that there are, also those whose documents failed.
    /// @param inUse  whether an image is one that the asset files name.
    /// @return the files that are gone, as they are shown.
    std::vector<std::string> prune(const std::vector<std::string>& names, const InUse& inUse);

    /// Writes the lists.
    /// @return false when one cannot be written; standard error then says why.
    bool write() const;

  private:
    using Documents = std::map<std::string, batch::WrittenDocument>;
    struct List
    {
        std::filesystem::path place;
        Documents documents;
    };

    static Documents read(const std::filesystem::path& place);
    bool isNamedElsewhere(const std::string& name);
    void remove(const std::string& name, const batch::WrittenDocument& document, const InUse& inUse,
                std::vector<std::string>& removed) const;

    const batch::OutputFolder& _folder;
    std::string _things;
    /// By the asset files as they were named.
    std::map<std::string, List> _lists;
    /// Names in the lists of other asset files, once they were asked for.
    std::optional<std::set<std::string>> _elsewhere;
};

} // namespace vyr::cli
