#include "textures/MaterialFolder.h"

#include "base/Paths.h"

namespace vyr::MaterialTranslation::textures
{

namespace fs = std::filesystem;

fs::path materialFolder(const std::string& outputDirectory, const std::string& name)
{
    return fs::absolute(base::pathFromUtf8(outputDirectory)) / base::pathFromUtf8(name);
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

} // namespace vyr::MaterialTranslation::textures
