#pragma once

#include <filesystem>
#include <string_view>

namespace vyr::MaterialTranslation::core
{

/// A name beside `file` that no other call in any process uses, for a file that is being written.
/// It starts with "." and ends in ".tmp", and is short whatever the file's name is.
std::filesystem::path temporaryBeside(const std::filesystem::path& file);

/// Writes a file as a whole: to a temporary name beside it, then renamed, so that nobody ever sees
/// half of it and an existing file is only replaced by a whole one. On failure the temporary file
/// is removed and an existing file stays as it was.
/// @throws std::filesystem::filesystem_error with the file's path.
void writeFileAtomically(const std::filesystem::path& file, std::string_view bytes);

} // namespace vyr::MaterialTranslation::core
