#include "core/OutputFolder.h"

#include <algorithm>
#include <iterator>

#include "core/Text.h"

namespace vyr::MaterialTranslation::core
{

namespace fs = std::filesystem;

namespace
{

// Windows, "Naming Files, Paths, and Namespaces".
constexpr const char* devices[] = {"con", "prn", "aux", "nul", "conin$", "conout$"};
constexpr const char* numberedDevices[] = {"com", "lpt"};

} // namespace

fs::path materialFolder(const std::string& outputDirectory, const std::string& name)
{
    return fs::absolute(pathFromUtf8(outputDirectory)) / pathFromUtf8(name);
}

bool makeMaterialFolder(const fs::path& folder)
{
    std::error_code error;
    const fs::file_status status = fs::symlink_status(folder, error);
    if (fs::is_directory(status))
        return false;
    if (fs::exists(status))
        throw fs::filesystem_error("create_directory", folder,
                                   std::make_error_code(std::errc::not_a_directory));
    fs::create_directory(folder, error);
    if (error)
        throw fs::filesystem_error("create_directory", folder, error);
    return true;
}

bool isDeviceName(std::string_view name)
{
    std::string_view stem = name.substr(0, name.find('.'));
    while (stem.ends_with(' '))
        stem.remove_suffix(1);
    const auto is = [&](const char* device) { return equalsIgnoringCase(stem, device); };
    if (std::any_of(std::begin(devices), std::end(devices), is))
        return true;
    if (stem.size() != 4 || stem.back() < '0' || stem.back() > '9')
        return false;
    stem.remove_suffix(1);
    return std::any_of(std::begin(numberedDevices), std::end(numberedDevices), is);
}

} // namespace vyr::MaterialTranslation::core
