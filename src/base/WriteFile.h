#pragma once

#include <filesystem>
#include <string_view>
#include <system_error>

/// @file
/// Files that are written whole or not at all.
///
/// The bytes go to a temporary name beside the file, ".vyr-<hash>-<n>.tmp", which is renamed when all of
/// them are there. The temporary name is the same in every run and locked while it is written, so that
/// what a killed run left behind is taken over by the next one, and two processes never write one file.
/// A new file gets its name only when it is whole, without a temporary one, where the system can.
///
/// What is replaced is the name: a symbolic link there is not followed, other hard links keep the old
/// content. Devices, pipes, sockets and links to them are refused. Whatever fails, the file is as it was
/// and no temporary one stays.
namespace vyr::base
{

/// Makes `file` a file of these bytes.
std::error_code writeFile(const std::filesystem::path& file, std::string_view bytes);

/// Makes `to` a copy of `from`, with its time of last change.
std::error_code copyFile(const std::filesystem::path& from, const std::filesystem::path& to);

} // namespace vyr::base
