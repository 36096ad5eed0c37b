#pragma once

#include <filesystem>
#include <optional>
#include <string>

/// @file
/// What was installed beside the program, and addresses of files.
namespace vyr::cli
{

/// A file below `share/vyr_mtlx_converter`, found from where the converter's library is; nothing when it was not
/// installed.
std::optional<std::filesystem::path> installedFile(const std::string& name);

/// The address by which browsers and editors open a file.
std::string fileUrl(const std::filesystem::path& file);

} // namespace vyr::cli
