#include "support/TemporaryFolder.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>

namespace vyr::support
{

TemporaryFolder::TemporaryFolder()
{
    std::random_device random;
    do
        _path = std::filesystem::temp_directory_path() / ("vyr-test-" + std::to_string(random()));
    while (!std::filesystem::create_directory(_path));
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(_path, ignored);
}

std::filesystem::path TemporaryFolder::write(const std::filesystem::path& name,
                                             const std::string& content) const
{
    const std::filesystem::path path = _path / name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file.exceptions(std::ios::badbit | std::ios::failbit);
    file << content << std::flush;
    return path;
}

std::vector<std::string> TemporaryFolder::entries() const
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(_path))
        names.push_back(utf8(entry.path().lexically_relative(_path).generic_u8string()));
    std::sort(names.begin(), names.end());
    return names;
}

std::string TemporaryFolder::utf8(const std::filesystem::path& path)
{
    const auto text = path.u8string();
    return std::string(text.begin(), text.end());
}

std::string readFile(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error("cannot read " + TemporaryFolder::utf8(path));
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

} // namespace vyr::support
