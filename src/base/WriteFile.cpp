#include "base/WriteFile.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <fstream>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

#if defined(_WIN32)
#include <cstdio>
#include <share.h>
#else
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace vyr::base
{

namespace fs = std::filesystem;

namespace
{

std::error_code lastError()
{
    return {errno != 0 ? errno : EIO, std::generic_category()};
}

std::error_code busy()
{
    return std::make_error_code(std::errc::device_or_resource_busy);
}

/// FNV-1a, which gives the same number everywhere (http://www.isthe.com/chongo/tech/comp/fnv/).
std::uint64_t hashOf(const std::u8string& text)
{
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (const char8_t c : text)
        hash = (hash ^ c) * 0x100000001B3U;
    return hash;
}

fs::path temporaryBeside(const fs::path& file, int attempt)
{
    return file.parent_path() /
           fmt::format(".vyr-{:x}-{}.tmp", hashOf(file.filename().u8string()), attempt);
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

#if defined(_WIN32)

/// A file that is open in a way that lets nobody else open it.
class NewFile
{
  public:
    NewFile() = default;
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile() { close(); }

    std::error_code open(const fs::path& path)
    {
        _path = path;
        _file = _wfsopen(path.c_str(), L"wb", _SH_DENYRW);
        if (_file)
            return {};
        return errno == EACCES && fs::exists(path) ? busy() : lastError();
    }

    std::error_code write(std::string_view bytes)
    {
        errno = 0;
        const bool whole = std::fwrite(bytes.data(), 1, bytes.size(), _file) == bytes.size();
        return whole ? std::error_code() : lastError();
    }

    std::error_code finish() { return close() ? std::error_code() : lastError(); }

    void copyTime(const fs::path& from)
    {
        std::error_code ignored;
        fs::last_write_time(_path, fs::last_write_time(from, ignored), ignored);
    }

  private:
    bool close()
    {
        errno = 0;
        std::FILE* const file = std::exchange(_file, nullptr);
        return !file || std::fclose(file) == 0;
    }

    fs::path _path;
    std::FILE* _file = nullptr;
};

#else

/// Less what the process withholds from new files.
constexpr mode_t permissions = 0666;

/// Never one of the three standard descriptors, which a host may have closed: what the process prints
/// would get into the file.
int aboveStandard(int descriptor)
{
    if (descriptor < 0 || descriptor > STDERR_FILENO)
        return descriptor;
    const int moved = ::fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int error = errno;
    ::close(descriptor);
    errno = error;
    return moved;
}

int openFile(const fs::path& path, int flags)
{
    return aboveStandard(::open(path.c_str(), flags | O_CLOEXEC, permissions));
}

/// An open descriptor; with a lock on a named file, which belongs to this process until it is closed.
class NewFile
{
  public:
    NewFile() = default;
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile()
    {
        if (_descriptor >= 0)
            ::close(_descriptor);
    }

    /// Takes the name for this process: makes an empty file, or takes over and empties one that a dead
    /// process left. Whatever else stands there belongs to somebody and counts as busy.
    std::error_code open(const fs::path& path)
    {
        constexpr int flags = O_WRONLY | O_NOFOLLOW | O_NONBLOCK;
        _descriptor = openFile(path, flags | O_CREAT | O_EXCL);
        const bool made = _descriptor >= 0;
        if (!made && errno != EEXIST)
            return lastError();
        if (!made)
            _descriptor = openFile(path, flags);
        if (_descriptor < 0)
            return busy();
        const bool locked = ::flock(_descriptor, LOCK_EX | LOCK_NB) == 0;
        // Without locks only a file that was made here is known to be nobody else's.
        const bool mayLock = locked || (made && errno != EWOULDBLOCK);
        if (!mayLock)
            return busy();
        // Between its making and its lock another process may have taken the file over and renamed it:
        // what has the name now is not ours to remove.
        struct stat opened = {};
        if (::fstat(_descriptor, &opened) != 0)
            return lastError();
        // What another user's process left cannot be renamed out of every folder.
        const bool isOurs = made || opened.st_uid == ::geteuid();
        if (!isOurs || !isOnlyName(path, opened))
            return busy();
        // Some file systems write a file to the disk at once when it was emptied, even of nothing.
        return made || ::ftruncate(_descriptor, 0) == 0 ? std::error_code() : lastError();
    }

    std::error_code write(std::string_view bytes)
    {
        while (!bytes.empty())
        {
            const ssize_t written = ::write(_descriptor, bytes.data(), bytes.size());
            if (written < 0 && errno != EINTR)
                return lastError();
            bytes.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
        }
        return {};
    }

    /// Closing any descriptor of the file makes the system say what it has not said yet; this one stays
    /// open for its lock.
    std::error_code finish()
    {
        const int copy = ::dup(_descriptor);
        return copy >= 0 && ::close(copy) == 0 ? std::error_code() : lastError();
    }

    /// A file system that keeps no times costs only a needless copy the next time.
    void copyTime(const fs::path& from)
    {
        struct stat source = {};
        if (::stat(from.c_str(), &source) != 0)
            return;
#if defined(__APPLE__)
        const struct timespec times[] = {source.st_atimespec, source.st_mtimespec};
#else
        const struct timespec times[] = {source.st_atim, source.st_mtim};
#endif
        ::futimens(_descriptor, times);
    }

#if defined(__linux__)
    /// A file without a name, of which nothing is left when the process dies. Not every file system has
    /// such.
    bool openUnnamed(const fs::path& folder)
    {
        _descriptor = openFile(folder.empty() ? "." : folder, O_TMPFILE | O_WRONLY);
        return _descriptor >= 0;
    }

    /// Gives such a file a name that nothing has yet.
    bool giveName(const fs::path& path) const
    {
        if (::linkat(_descriptor, "", AT_FDCWD, path.c_str(), AT_EMPTY_PATH) == 0)
            return true;
        // Older kernels keep that for a privilege, but let everybody link the descriptor's own name.
        const std::string own = "/proc/self/fd/" + std::to_string(_descriptor);
        return errno != EEXIST &&
               ::linkat(AT_FDCWD, own.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0;
    }

    /// The kernel copies within itself, and only shares the blocks where the file system can.
    /// @return nothing when it cannot, and has not begun.
    std::optional<std::error_code> copyFrom(const fs::path& file)
    {
        constexpr std::size_t atOnce = std::size_t{1} << 30;
        const int source = openFile(file, O_RDONLY);
        bool begun = false;
        ssize_t copied = 0;
        do
        {
            copied = ::copy_file_range(source, nullptr, _descriptor, nullptr, atOnce, 0);
            begun = begun || copied > 0;
        } while (copied > 0 || (copied < 0 && errno == EINTR));
        const std::error_code error = copied < 0 ? lastError() : std::error_code();
        if (source >= 0)
            ::close(source);
        return begun ? std::optional(error) : std::nullopt;
    }
#endif

  private:
    /// Whether the open file is an ordinary one that has this name and no other: its last owner may have
    /// renamed it after it was opened here.
    static bool isOnlyName(const fs::path& path, const struct stat& opened)
    {
        struct stat named = {};
        return S_ISREG(opened.st_mode) && opened.st_nlink == 1 &&
               ::lstat(path.c_str(), &named) == 0 && opened.st_ino == named.st_ino &&
               opened.st_dev == named.st_dev;
    }

    int _descriptor = -1;
};

#endif

std::error_code copyInto(NewFile& target, const fs::path& from)
{
#if defined(__linux__)
    if (const auto done = target.copyFrom(from))
        return *done;
#endif
    std::ifstream source(from, std::ios::binary);
    if (!source)
        return std::make_error_code(std::errc::permission_denied);
    std::vector<char> piece(std::size_t{1} << 20);
    while (source)
    {
        source.read(piece.data(), static_cast<std::streamsize>(piece.size()));
        if (const auto error =
                target.write({piece.data(), static_cast<std::size_t>(source.gcount())}))
            return error;
    }
    return source.bad() ? std::make_error_code(std::errc::io_error) : std::error_code();
}

/// Replaces the file by what `fill` writes.
template <class Fill> std::error_code replaceFile(const fs::path& file, Fill fill)
{
    constexpr int mostAttempts = 100;
    if (isSpecial(file))
        return std::make_error_code(std::errc::operation_not_permitted);
    std::error_code error;
    for (int attempt = 0; attempt < mostAttempts; ++attempt)
    {
        const fs::path temporary = temporaryBeside(file, attempt);
        NewFile target;
        error = target.open(temporary);
        if (error == std::errc::device_or_resource_busy)
            continue;
        if (error)
            return error;
        error = fill(target);
        if (const std::error_code finished = target.finish(); !error)
            error = finished;
        if (!error)
            fs::rename(temporary, file, error);
        std::error_code ignored;
        if (error)
            fs::remove(temporary, ignored);
        return error;
    }
    return error;
}

/// Makes a file that is not there yet, which has no name before all of its content is in it.
/// @return whether it was made. If not, nothing has changed, and replacing the file tells why.
bool writeNewFile([[maybe_unused]] const fs::path& file, [[maybe_unused]] std::string_view bytes)
{
#if defined(__linux__)
    // Asking costs less than writing in vain, and more than nothing: where the last file was new, this
    // one probably is too.
    static std::atomic<bool> lastWasThere{false};
    struct stat former = {};
    if (lastWasThere && ::lstat(file.c_str(), &former) == 0)
        return false;
    NewFile target;
    if (!target.openUnnamed(file.parent_path()) || target.write(bytes) || target.finish())
        return false;
    const bool named = target.giveName(file);
    lastWasThere = !named && errno == EEXIST;
    return named;
#else
    return false;
#endif
}

} // namespace

std::error_code writeFile(const fs::path& file, std::string_view bytes)
{
    if (writeNewFile(file, bytes))
        return {};
    return replaceFile(file, [&](NewFile& target) { return target.write(bytes); });
}

std::error_code copyFile(const fs::path& from, const fs::path& to)
{
    return replaceFile(to,
                       [&](NewFile& target)
                       {
                           const std::error_code error = copyInto(target, from);
                           if (!error)
                               target.copyTime(from);
                           return error;
                       });
}

} // namespace vyr::base
