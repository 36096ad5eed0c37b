#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace vyr::support
{

/// A new folder in the system's temporary directory, removed with all that is in it.
class TemporaryFolder
{
  public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return _path; }
    /// The path in UTF-8.
    std::string text() const { return utf8(_path); }

    /// The path of an entry; nothing is created.
    std::filesystem::path operator/(const std::filesystem::path& name) const
    {
        return _path / name;
    }
    /// Writes a file, with the folders above it.
    std::filesystem::path write(const std::filesystem::path& name,
                                const std::string& content) const;
    /// Everything below the folder, relative to it, sorted; "/" between the parts.
    std::vector<std::string> entries() const;

    static std::string utf8(const std::filesystem::path& path);

  private:
    std::filesystem::path _path;
};

std::string readFile(const std::filesystem::path& path);

} // namespace vyr::support
