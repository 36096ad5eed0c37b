#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace vyr::assetlib
{

/// Remembers what the file system said, since many materials refer to the same few images. Used by one
/// thread during one load.
class FolderCache
{
  public:
    /// Names in a folder, by their case-folded form.
    using Listing = std::multimap<std::string, std::string>;

    bool isFile(const std::filesystem::path& path);
    /// Empty when the folder cannot be read.
    const Listing& listing(const std::filesystem::path& folder);

  private:
    std::unordered_map<std::filesystem::path::string_type, bool> _files;
    std::unordered_map<std::filesystem::path::string_type, Listing> _listings;
};

/// Looks image references up in a chain of folders.
class ImageFinder
{
  public:
    struct Image
    {
        /// The absolute path, or the reference as written when there is no such file.
        std::string path;
        /// What is doubtful about it; usually empty.
        std::string remark;
    };

    /// @param folders absolute, in the order of the search.
    ImageFinder(FolderCache& cache, std::vector<std::filesystem::path> folders)
        : _cache(cache), _folders(std::move(folders))
    {
    }

    const std::vector<std::filesystem::path>& folders() const { return _folders; }

    /// The result lives as long as the finder.
    const Image& find(const std::string& reference);

  private:
    Image lookUp(const std::string& reference);
    std::vector<std::string> findInAnyCase(const std::filesystem::path& path);

    FolderCache& _cache;
    std::vector<std::filesystem::path> _folders;
    std::unordered_map<std::string, Image> _found;
};

/// The absolute path of the file that a reference names in one of the folders, upper and lower case
/// as written. Asks the file system each time.
std::optional<std::string> findFile(const std::vector<std::filesystem::path>& folders,
                                    const std::string& reference);

} // namespace vyr::assetlib
