#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vyr::cli
{

/// The path that a UTF-8 text names, on every system.
std::filesystem::path pathFromUtf8(std::string_view text);

/// A path as UTF-8 text, with the separators of the system.
std::string utf8FromPath(const std::filesystem::path& path);

/// The folder that a command writes into.
struct OutputFolder
{
    /// As the user wrote it, for messages and results.
    std::filesystem::path shown;
    /// Absolute, without "." and ".." components, symbolic links as they stand.
    std::filesystem::path absolute;
    /// Absolute, symbolic links resolved.
    std::filesystem::path canonical;
};

/// Makes the folder, with its parents, when it is missing.
/// @return nothing when that cannot be done; standard error then says why.
std::optional<OutputFolder> makeOutputFolder(const std::string& path);

/// The file with the folder that it is in resolved, so that two spellings of one place compare
/// equal; the file itself need not exist, and a symbolic link stays one.
std::filesystem::path placeOf(const std::filesystem::path& file);

} // namespace vyr::cli
