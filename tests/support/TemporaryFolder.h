#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace vyr::support
{

/// A new folder in the system's temporary directory, removed with all that is in it.
class TemporaryFolder
{
  public:
    TemporaryFolder()
    {
        std::random_device random;
        do
            _path =
                std::filesystem::temp_directory_path() / ("vyr-test-" + std::to_string(random()));
        while (!std::filesystem::create_directory(_path));
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(_path, ignored);
    }
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
    std::filesystem::path write(const std::filesystem::path& name, const std::string& content) const
    {
        const std::filesystem::path path = _path / name;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream file(path, std::ios::binary);
        file.exceptions(std::ios::badbit | std::ios::failbit);
        file << content << std::flush;
        return path;
    }
    /// Everything below the folder, relative to it, sorted; "/" between the parts.
    std::vector<std::string> entries() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(_path))
            names.push_back(utf8(entry.path().lexically_relative(_path).generic_u8string()));
        std::sort(names.begin(), names.end());
        return names;
    }

    static std::string utf8(const std::filesystem::path& path)
    {
        const auto text = path.u8string();
        return std::string(text.begin(), text.end());
    }

  private:
    std::filesystem::path _path;
};

inline std::string readFile(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error("cannot read " + TemporaryFolder::utf8(path));
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

} // namespace vyr::support
