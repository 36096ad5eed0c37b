// Lets system calls fail in a program that loads this library first: VYR_FAULTS="rename=5 flock=37" gives names and
// numbers of errors; "short" lets each write take a few bytes at most, with interruptions.

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

// "flock" is a struct too.
#pragma GCC diagnostic ignored "-Wshadow"

namespace
{

bool fails(const char* call)
{
    const char* const faults = std::getenv("VYR_FAULTS");
    const char* const at = faults ? std::strstr(faults, call) : nullptr;
    if (at)
        errno = std::atoi(at + std::strlen(call) + 1);
    return at != nullptr;
}

template <class... Arguments> long unless(const char* call, long number, Arguments... arguments)
{
    return fails(call) ? -1 : ::syscall(number, arguments...);
}

} // namespace

extern "C"
{
    int open(const char* path, int flags, ...)
    {
        std::va_list list;
        va_start(list, flags);
        const unsigned mode = va_arg(list, unsigned);
        va_end(list);
        const bool isUnnamed = (flags & O_TMPFILE) == O_TMPFILE;
        return static_cast<int>(
            unless(isUnnamed ? "tmpfile" : "open", SYS_openat, AT_FDCWD, path, flags, mode));
    }

    ssize_t write(int descriptor, const void* bytes, std::size_t size)
    {
        static bool isInterrupted = false;
        if (!fails("short") || size < 4)
            return unless("write", SYS_write, descriptor, bytes, size);
        isInterrupted = !isInterrupted;
        errno = EINTR;
        return isInterrupted ? -1 : ::syscall(SYS_write, descriptor, bytes, size / 2);
    }

    int flock(int descriptor, int operation) noexcept
    {
        return static_cast<int>(unless("flock", SYS_flock, descriptor, operation));
    }

    int fstat(int descriptor, struct stat* result) noexcept
    {
        return static_cast<int>(
            unless("fstat", SYS_newfstatat, descriptor, "", result, AT_EMPTY_PATH));
    }

    int linkat(int from, const char* a, int to, const char* b, int flags) noexcept
    {
        return static_cast<int>(unless("linkat", SYS_linkat, from, a, to, b, flags));
    }

    int rename(const char* from, const char* to) noexcept
    {
        return static_cast<int>(unless("rename", SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
    }

    int dup(int descriptor) noexcept
    {
        return static_cast<int>(unless("dup", SYS_dup, descriptor));
    }

    ssize_t copy_file_range(int from, off64_t* a, int to, off64_t* b, std::size_t size,
                            unsigned flags)
    {
        return unless("copy_file_range", SYS_copy_file_range, from, a, to, b, size, flags);
    }
}
