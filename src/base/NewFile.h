#pragma once

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#if defined(_WIN32)
#include <share.h>
#else
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

/// @file
/// A file that is being written, by the calls of the system: for WriteFile.cpp, which makes it whole or not at all.
namespace vyr::base
{

namespace fs = std::filesystem;

inline std::error_code lastError()
{
    return {errno != 0 ? errno : EIO, std::generic_category()};
}

inline std::error_code busy()
{
    return std::make_error_code(std::errc::device_or_resource_busy);
}

/// Device, number and time of last change of a file; zeros where the system tells none.
using FileMark = std::array<std::uint64_t, 4>;

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

    FileMark mark() const { return {}; }

    static bool hasMark(const fs::path& path, const FileMark&) { return fs::exists(path); }

    static bool renameToNew(const fs::path&, const fs::path&) { return false; }

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
inline int aboveStandard(int descriptor)
{
    if (descriptor < 0 || descriptor > STDERR_FILENO)
        return descriptor;
    const int moved = ::fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int error = errno;
    ::close(descriptor);
    errno = error;
    return moved;
}

inline int openFile(const fs::path& path, int flags)
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
    ~NewFile() { close(); }

    /// Takes the name for this process: makes an empty file, in place of one that a dead process left.
    /// Whatever else stands there belongs to somebody and counts as busy.
    std::error_code open(const fs::path& path)
    {
        std::error_code error = create(path);
        if (error == std::errc::file_exists && removeLeftover(path))
            error = create(path);
        return error == std::errc::file_exists ? busy() : error;
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

    /// What tells the file from every other that ever has its name.
    FileMark mark() const
    {
        struct stat opened = {};
        return ::fstat(_descriptor, &opened) == 0 ? markOf(opened) : FileMark();
    }

    /// Gives a file a name that nothing has yet, in place of its own.
    /// @return false also where the system has no such call.
    static bool renameToNew([[maybe_unused]] const fs::path& from,
                            [[maybe_unused]] const fs::path& to)
    {
#if defined(__linux__)
        return ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0;
#elif defined(__APPLE__)
        return ::renamex_np(from.c_str(), to.c_str(), RENAME_EXCL) == 0;
#else
        return false;
#endif
    }

    static bool hasMark(const fs::path& path, const FileMark& mark)
    {
        struct stat named = {};
        return ::lstat(path.c_str(), &named) == 0 && markOf(named) == mark;
    }

  private:
    static FileMark markOf(const struct stat& file)
    {
#if defined(__APPLE__)
        const struct timespec changed = file.st_mtimespec;
#else
        const struct timespec changed = file.st_mtim;
#endif
        return {{static_cast<std::uint64_t>(file.st_dev), static_cast<std::uint64_t>(file.st_ino),
                 static_cast<std::uint64_t>(changed.tv_sec),
                 static_cast<std::uint64_t>(changed.tv_nsec)}};
    }

    std::error_code create(const fs::path& path)
    {
        close();
        _descriptor = openFile(path, O_WRONLY | O_CREAT | O_EXCL);
        if (_descriptor < 0)
            return lastError();
        // Between its making and its lock another process may have taken the file for a leftover. Where
        // there are no locks nobody does.
        const bool taken = ::flock(_descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
        struct stat named = {};
        const bool gone =
            ::lstat(path.c_str(), &named) == 0 ? !isOpen(named, true) : errno == ENOENT;
        return taken || gone ? busy() : std::error_code();
    }

    /// What another user's process left cannot be removed from every folder.
    static bool removeLeftover(const fs::path& path)
    {
        NewFile leftover;
        leftover._descriptor = openFile(path, O_WRONLY | O_NOFOLLOW | O_NONBLOCK);
        struct stat named = {};
        return leftover._descriptor >= 0 && ::flock(leftover._descriptor, LOCK_EX | LOCK_NB) == 0 &&
               ::lstat(path.c_str(), &named) == 0 && S_ISREG(named.st_mode) &&
               named.st_nlink == 1 && named.st_uid == ::geteuid() &&
               leftover.isOpen(named, false) && ::unlink(path.c_str()) == 0;
    }

    /// Whether this is the file that is open here.
    /// @param otherwise the answer when the system gives none.
    bool isOpen(const struct stat& named, bool otherwise) const
    {
        struct stat opened = {};
        if (::fstat(_descriptor, &opened) != 0)
            return otherwise;
        return opened.st_ino == named.st_ino && opened.st_dev == named.st_dev;
    }

    void close()
    {
        if (_descriptor >= 0)
            ::close(std::exchange(_descriptor, -1));
    }

    int _descriptor = -1;
};

#endif

} // namespace vyr::base
