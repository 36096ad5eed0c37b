#include <atomic>
#include <cerrno>
#include <string>
#include <utility>

#include "core/ReplaceFile.h"

#if defined(_WIN32)
#include <cstdio>
#include <share.h>
#else
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace vyr::MaterialTranslation::core
{

namespace fs = std::filesystem;

namespace
{

std::error_code lastError()
{
    return {errno != 0 ? errno : EIO, std::generic_category()};
}

#if defined(_WIN32)

/// A file that is open in a way that lets nobody else open it.
class MachineFile : public NewFile
{
  public:
    MachineFile() = default;
    MachineFile(const MachineFile&) = delete;
    MachineFile& operator=(const MachineFile&) = delete;
    ~MachineFile() override
    {
        if (_file)
            std::fclose(_file);
    }

    std::error_code open(const fs::path& path)
    {
        _file = _wfsopen(path.c_str(), L"wb", _SH_DENYRW);
        if (_file)
            return {};
        return errno == EACCES && fs::exists(path)
                   ? std::make_error_code(std::errc::device_or_resource_busy)
                   : lastError();
    }

    std::error_code write(std::string_view bytes) override
    {
        errno = 0;
        return std::fwrite(bytes.data(), 1, bytes.size(), _file) == bytes.size() ? std::error_code()
                                                                                 : lastError();
    }

    std::error_code close() override
    {
        errno = 0;
        const bool closed = std::fclose(_file) == 0;
        _file = nullptr;
        return closed ? std::error_code() : lastError();
    }

  private:
    std::FILE* _file = nullptr;
};

#else

/// A descriptor with an advisory lock, which lasts until the object goes or its process dies: the name
/// belongs to this process until the file has its final one.
class MachineFile : public NewFile
{
  public:
    MachineFile() = default;
    MachineFile(const MachineFile&) = delete;
    MachineFile& operator=(const MachineFile&) = delete;
    ~MachineFile() override
    {
        if (_descriptor >= 0)
            ::close(_descriptor);
    }

    /// Takes the file behind `path` for this process, empty. A symbolic link is not followed. What is
    /// no file, or has another name too, is somebody's and counts as busy.
    std::error_code open(const fs::path& path)
    {
        _descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC,
                             permissions);
        if (_descriptor < 0)
            return errno == ENXIO ? std::make_error_code(std::errc::device_or_resource_busy)
                                  : lastError();
        const bool taken = ::flock(_descriptor, LOCK_EX | LOCK_NB) == 0;
        if (!taken && errno != EWOULDBLOCK)
            return lastError();
        struct stat opened = {};
        // Its last owner may have renamed the file after it was opened here.
        if (!taken || ::fstat(_descriptor, &opened) != 0 || !S_ISREG(opened.st_mode) ||
            opened.st_nlink != 1 || !isStill(path, opened))
            return std::make_error_code(std::errc::device_or_resource_busy);
        // Some file systems write a file to the disk at once when it was emptied, even of nothing.
        return opened.st_size == 0 || ::ftruncate(_descriptor, 0) == 0 ? std::error_code()
                                                                       : lastError();
    }

    std::error_code write(std::string_view bytes) override
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

#if defined(__linux__)
    /// A file without a name, of which nothing is left when the process dies. Not every file system has such.
    std::error_code openUnnamed(const fs::path& folder)
    {
        _descriptor = ::open(folder.empty() ? "." : folder.c_str(),
                             O_TMPFILE | O_WRONLY | O_CLOEXEC, permissions);
        return _descriptor < 0 ? lastError() : std::error_code();
    }

    /// Gives such a file a name that nothing has yet.
    std::error_code giveName(const fs::path& path) const
    {
        if (::linkat(_descriptor, "", AT_FDCWD, path.c_str(), AT_EMPTY_PATH) == 0)
            return {};
        if (errno == EEXIST)
            return lastError();
        // Older kernels keep that for a privilege, but let everybody link the descriptor's own name.
        const std::string own = "/proc/self/fd/" + std::to_string(_descriptor);
        return ::linkat(AT_FDCWD, own.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0
                   ? std::error_code()
                   : lastError();
    }

    /// The kernel copies within itself, and only shares the blocks where the file system can.
    std::error_code copyFrom(const fs::path& file) override
    {
        const int source = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
        constexpr std::size_t atOnce = std::size_t{1} << 30;
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
        // Not every kernel and file system can.
        return begun ? error : NewFile::copyFrom(file);
    }
#endif

    /// Closing any descriptor of the file makes the system say what it has not said yet; this one stays
    /// open for its lock.
    std::error_code close() override
    {
        const int copy = ::dup(_descriptor);
        return copy >= 0 && ::close(copy) == 0 ? std::error_code() : lastError();
    }

  private:
    /// Less what the process withholds from new files.
    static constexpr mode_t permissions = 0666;

    static bool isStill(const fs::path& path, const struct stat& opened)
    {
        struct stat named = {};
        return ::lstat(path.c_str(), &named) == 0 && opened.st_ino == named.st_ino &&
               opened.st_dev == named.st_dev;
    }

    int _descriptor = -1;
};

#endif

class MachineFileSystem : public FileSystem
{
  public:
    std::unique_ptr<NewFile> create(const fs::path& path, std::error_code& error) override
    {
        auto file = std::make_unique<MachineFile>();
        error = file->open(path);
        return error ? nullptr : std::move(file);
    }

    std::error_code rename(const fs::path& from, const fs::path& to) override
    {
        std::error_code error;
        fs::rename(from, to, error);
        return error;
    }

    void remove(const fs::path& path) override
    {
        std::error_code ignored;
        fs::remove(path, ignored);
    }

#if defined(__linux__)
    bool writeNew(const fs::path& path, std::string_view bytes) override
    {
        // Asking costs less than writing in vain, and more than nothing: where the last file was new,
        // this one probably is too.
        struct stat former = {};
        if (_replacing && ::lstat(path.c_str(), &former) == 0)
            return false;
        MachineFile file;
        if (file.openUnnamed(path.parent_path()) || file.write(bytes) || file.close())
            return false;
        const std::error_code named = file.giveName(path);
        _replacing = named == std::errc::file_exists;
        return !named;
    }

  private:
    /// Whether the last file was found to be there already.
    std::atomic<bool> _replacing{false};
#endif
};

} // namespace

FileSystem& machineFileSystem()
{
    static MachineFileSystem files;
    return files;
}

} // namespace vyr::MaterialTranslation::core
