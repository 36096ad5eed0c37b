#include <cerrno>
#include <cstdio>
#include <utility>

#include "core/ReplaceFile.h"

#if defined(_WIN32)
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
class Lock
{
};

std::FILE* openAlone(const fs::path& path, Lock& /*lock*/, std::error_code& error)
{
    std::FILE* file = _wfsopen(path.c_str(), L"wb", _SH_DENYRW);
    if (!file)
        error = errno == EACCES && fs::exists(path)
                    ? std::make_error_code(std::errc::device_or_resource_busy)
                    : lastError();
    return file;
}

#else

/// A descriptor whose advisory lock lasts until it is closed, or until its process dies.
class Lock
{
  public:
    Lock() = default;
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
    Lock(Lock&& other) noexcept : _descriptor(std::exchange(other._descriptor, -1)) {}
    ~Lock()
    {
        if (_descriptor >= 0)
            ::close(_descriptor);
    }

    /// Takes the file behind `path` for this process, empty. A symbolic link is not followed.
    std::error_code take(const fs::path& path)
    {
        constexpr mode_t mode = 0666;
        _descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_NOFOLLOW | O_CLOEXEC, mode);
        if (_descriptor < 0)
            return lastError();
        const bool taken = ::flock(_descriptor, LOCK_EX | LOCK_NB) == 0;
        if (!taken && errno != EWOULDBLOCK)
            return lastError();
        // Its last owner may have renamed the file after it was opened here.
        if (!taken || !isStill(path))
            return std::make_error_code(std::errc::device_or_resource_busy);
        return ::ftruncate(_descriptor, 0) == 0 ? std::error_code() : lastError();
    }

    std::FILE* stream() const
    {
        const int copy = ::dup(_descriptor);
        std::FILE* file = copy < 0 ? nullptr : ::fdopen(copy, "wb");
        if (!file && copy >= 0)
            ::close(copy);
        return file;
    }

  private:
    bool isStill(const fs::path& path) const
    {
        struct stat opened = {};
        struct stat named = {};
        return ::fstat(_descriptor, &opened) == 0 && ::lstat(path.c_str(), &named) == 0 &&
               opened.st_ino == named.st_ino && opened.st_dev == named.st_dev;
    }

    int _descriptor = -1;
};

std::FILE* openAlone(const fs::path& path, Lock& lock, std::error_code& error)
{
    error = lock.take(path);
    std::FILE* file = error ? nullptr : lock.stream();
    if (!file && !error)
        error = lastError();
    return file;
}

#endif

class MachineFile : public NewFile
{
  public:
    MachineFile(std::FILE* file, Lock lock) : _lock(std::move(lock)), _file(file)
    {
        // Everything comes in large pieces; a buffer would only copy them.
        std::setvbuf(_file, nullptr, _IONBF, 0);
    }
    MachineFile(const MachineFile&) = delete;
    MachineFile& operator=(const MachineFile&) = delete;
    ~MachineFile() override
    {
        if (_file)
            std::fclose(_file);
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
    /// Outlives the stream: the name belongs to this process until the file has its final one.
    Lock _lock;
    std::FILE* _file;
};

class MachineFileSystem : public FileSystem
{
  public:
    std::unique_ptr<NewFile> create(const fs::path& path, std::error_code& error) override
    {
        errno = 0;
        Lock lock;
        std::FILE* file = openAlone(path, lock, error);
        return file ? std::make_unique<MachineFile>(file, std::move(lock)) : nullptr;
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
};

} // namespace

FileSystem& machineFileSystem()
{
    static MachineFileSystem files;
    return files;
}

} // namespace vyr::MaterialTranslation::core
