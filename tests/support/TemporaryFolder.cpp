#include "support/TemporaryFolder.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>

namespace vyr::support
{

namespace
{

#if defined(_WIN32)
constexpr const char* temporaryVariable = "TMP";

void setVariable(const char* name, const char* value)
{
    _putenv_s(name, value ? value : "");
}
#else
constexpr const char* temporaryVariable = "TMPDIR";

void setVariable(const char* name, const char* value)
{
    if (value)
        setenv(name, value, 1);
    else
        unsetenv(name);
}
#endif

std::filesystem::path createUniqueFolder()
{
    std::random_device random;
    const std::filesystem::path parent = std::filesystem::temp_directory_path();
    for (int attempt = 0; attempt < 100; ++attempt)
    {
        const std::filesystem::path path = parent / ("vyr-test-" + std::to_string(random()));
        if (std::filesystem::create_directory(path))
            return path;
    }
    throw std::runtime_error("no temporary folder can be made");
}

} // namespace

TemporaryFolder::TemporaryFolder() : _path(createUniqueFolder()) {}

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
    file << content;
    file.close();
    if (!file)
        throw std::runtime_error("cannot write " + utf8(path));
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

TemporaryDirectoryOverride::TemporaryDirectoryOverride(const std::filesystem::path& folder)
{
    if (const char* former = std::getenv(temporaryVariable))
    {
        _former = former;
        _wasSet = true;
    }
    setVariable(temporaryVariable, folder.string().c_str());
}

TemporaryDirectoryOverride::~TemporaryDirectoryOverride()
{
    setVariable(temporaryVariable, _wasSet ? _former.c_str() : nullptr);
}

} // namespace vyr::support
