#include "base/WriteFile.h"

#include <array>
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

class PendingFile::State
{
  public:
    State() = default;
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    ~State()
    {
        std::error_code ignored;
        if (!_temporary.empty())
            fs::remove(_temporary, ignored);
    }

    /// @param fill writes into a NewFile.
    template <class Fill> std::error_code make(const fs::path& file, const Fill& fill)
    {
        constexpr int mostAttempts = 100;
        if (isSpecial(file))
            return std::make_error_code(std::errc::operation_not_permitted);
        std::error_code error = busy();
        for (int attempt = 0; attempt < mostAttempts && error == busy(); ++attempt)
        {
            const fs::path temporary = temporaryBeside(file, attempt);
            error = _target.emplace().open(temporary);
            if (!error)
                _temporary = temporary;
        }
        if (error)
            return error;
        error = fill(*_target);
        const std::error_code finished = _target->finish();
        return error ? error : finished;
    }

    std::error_code rename(const fs::path& file)
    {
        std::error_code error;
        fs::rename(_temporary, file, error);
        if (!error)
            _temporary.clear();
        return error;
    }

    std::error_code publish(const fs::path& file)
    {
        std::error_code error;
        // A second name is only given where there is none yet. Not every file system has such.
        fs::create_hard_link(_temporary, file, error);
        const bool isLinked = !error;
        _isNew = isLinked || !fs::exists(fs::symlink_status(file, error));
        if (isLinked)
            fs::remove(std::exchange(_temporary, fs::path()), error);
        else if (error = rename(file); error)
            return error;
        _published = file;
        _mark = _target->mark();
        _target.reset();
        return {};
    }

    void withdraw() const
    {
        std::error_code ignored;
        if (_isNew && NewFile::hasMark(_published, _mark))
            fs::remove(_published, ignored);
    }

  private:
    std::optional<NewFile> _target;
    /// Empty while the file has none.
    fs::path _temporary;
    fs::path _published;
    FileMark _mark{};
    bool _isNew = false;
};

PendingFile::PendingFile() : _state(std::make_unique<State>()) {}
PendingFile::PendingFile(PendingFile&&) noexcept = default;
PendingFile& PendingFile::operator=(PendingFile&&) noexcept = default;
PendingFile::~PendingFile() = default;

std::error_code PendingFile::write(const fs::path& file, std::string_view bytes)
{
    return _state->make(file, [&](NewFile& target) { return target.write(bytes); });
}

std::error_code PendingFile::copy(const fs::path& from, const fs::path& to)
{
    return _state->make(to,
                        [&](NewFile& target)
                        {
                            const std::error_code error = copyInto(target, from);
                            if (!error)
                                target.copyTime(from);
                            return error;
                        });
}

std::error_code PendingFile::publish(const fs::path& file)
{
    return _state->publish(file);
}

std::error_code PendingFile::replace(const fs::path& file)
{
    return _state->rename(file);
}

void PendingFile::withdraw() const
{
    _state->withdraw();
}

std::error_code writeFile(const fs::path& file, std::string_view bytes)
{
    if (writeNewFile(file, bytes))
        return {};
    PendingFile pending;
    const std::error_code error = pending.write(file, bytes);
    return error ? error : pending.replace(file);
}

std::error_code copyFile(const fs::path& from, const fs::path& to)
{
    PendingFile pending;
    const std::error_code error = pending.copy(from, to);
    return error ? error : pending.replace(to);
}

std::error_code waitForDisk([[maybe_unused]] const fs::path& folder)
{
#if defined(__linux__)
    const int descriptor = openFile(folder.empty() ? "." : folder, O_RDONLY | O_DIRECTORY);
    if (descriptor < 0)
        return lastError();
    const std::error_code error = ::syncfs(descriptor) == 0 ? std::error_code() : lastError();
    ::close(descriptor);
    return error;
#else
#if !defined(_WIN32)
    ::sync();
#endif
    return {};
#endif
}

} // namespace vyr::base
