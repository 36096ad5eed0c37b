#include "core/ReplaceFile.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

namespace vyr::MaterialTranslation::core
{

namespace fs = std::filesystem;

namespace
{

/// FNV-1a, which gives the same number everywhere (http://www.isthe.com/chongo/tech/comp/fnv/).
std::uint64_t hashOf(const std::u8string& text)
{
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (const char8_t c : text)
        hash = (hash ^ c) * 0x100000001B3U;
    return hash;
}

/// Whether something stands in the file's place that no renaming must take away: a device, a pipe, a
/// socket, or a link to one.
bool isSpecial(const fs::path& file)
{
    std::error_code error;
    // "/dev/stdout" leads to what this process has open at the moment, which may well be a file.
    const std::u8string target = fs::read_symlink(file, error).generic_u8string();
    if (target.starts_with(u8"/proc/") || target.starts_with(u8"/dev/"))
        return true;
    const fs::file_status status = fs::status(file, error);
    return fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status);
}

struct Temporary
{
    fs::path path;
    std::unique_ptr<NewFile> file;
};

Temporary createBeside(const fs::path& file, FileSystem& files, std::error_code& error)
{
    constexpr int mostAttempts = 100;
    for (int attempt = 0; attempt < mostAttempts; ++attempt)
    {
        const fs::path path = temporaryBeside(file, attempt);
        if (auto created = files.create(path, error))
            return {path, std::move(created)};
        if (error != std::errc::device_or_resource_busy)
            break;
    }
    return {};
}

} // namespace

std::error_code NewFile::copyFrom(const fs::path& file)
{
    std::ifstream source(file, std::ios::binary);
    if (!source)
        return std::make_error_code(std::errc::permission_denied);
    constexpr std::size_t pieceSize = std::size_t{1} << 20;
    std::vector<char> piece(pieceSize);
    while (source)
    {
        source.read(piece.data(), static_cast<std::streamsize>(piece.size()));
        if (const auto error = write({piece.data(), static_cast<std::size_t>(source.gcount())}))
            return error;
    }
    return source.bad() ? std::make_error_code(std::errc::io_error) : std::error_code();
}

bool FileSystem::writeNew(const fs::path& /*path*/, std::string_view /*bytes*/)
{
    return false;
}

fs::path temporaryBeside(const fs::path& file, int attempt)
{
    std::array<char, 16> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(),
                                   hashOf(file.filename().u8string()), 16);
    const std::string hash(digits.data(), end.ptr);
    return file.parent_path() / (".vyr-" + hash + "-" + std::to_string(attempt) + ".tmp");
}

std::error_code replaceFile(const fs::path& file, const Content& content,
                            const std::function<void(const fs::path&)>& beforeRename,
                            FileSystem& files)
{
    std::error_code error;
    if (isSpecial(file))
        return std::make_error_code(std::errc::operation_not_permitted);
    Temporary temporary = createBeside(file, files, error);
    if (!temporary.file)
        return error;
    error = content(*temporary.file);
    if (const std::error_code closed = temporary.file->close(); !error)
        error = closed;
    if (!error && beforeRename)
        beforeRename(temporary.path);
    if (!error)
        error = files.rename(temporary.path, file);
    if (error)
        files.remove(temporary.path);
    return error;
}

void writeFileAtomically(const fs::path& file, std::string_view bytes, FileSystem& files)
{
    if (files.writeNew(file, bytes))
        return;
    const auto error =
        replaceFile(file, [&](NewFile& target) { return target.write(bytes); }, {}, files);
    if (error)
        throw fs::filesystem_error("cannot write", file, error);
}

std::error_code copyFileAtomically(const fs::path& from, const fs::path& to, FileSystem& files)
{
    std::error_code error;
    const fs::file_time_type time = fs::last_write_time(from, error);
    if (error)
        return error;
    return replaceFile(
        to, [&](NewFile& target) { return target.copyFrom(from); },
        [&](const fs::path& path)
        {
            // A file system that keeps no times costs only a needless copy the next time.
            std::error_code ignored;
            fs::last_write_time(path, time, ignored);
        },
        files);
}

} // namespace vyr::MaterialTranslation::core
