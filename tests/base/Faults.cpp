// Lets system calls fail in a program that loads this library first: VYR_FAULTS="rename=5 flock=37" gives names and
// numbers of errors; "short" lets each write take half
// of its bytes, with interruptions; "noisy" lets the process print while it writes.

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

// "flock" and "stat" are structs too.
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
        for (int standard = 0; standard < 3 && fails("noisy"); ++standard)
            ::syscall(SYS_write, standard, "X", 1);
        if (!fails("short") || size < 4)
            return unless("write", SYS_write, descriptor, bytes, size);
        isInterrupted = !isInterrupted;
        errno = EINTR;
        return isInterrupted ? -1 : ::syscall(SYS_write, descriptor, bytes, size / 2);
    }

// A call that only passes its arguments on. The last arguments are those that the kernel wants.
#define VYR_FAULT(type, name, parameters, ...)                                                     \
    type name parameters                                                                           \
    {                                                                                              \
        return static_cast<type>(unless(#name, __VA_ARGS__));                                      \
    }
    VYR_FAULT(int, flock, (int file, int what) noexcept, SYS_flock, file, what)
    VYR_FAULT(int, linkat, (int from, const char* a, int to, const char* b, int flags) noexcept,
              SYS_linkat, from, a, to, b, flags)
    VYR_FAULT(int, rename, (const char* from, const char* to) noexcept, SYS_renameat2, AT_FDCWD,
              from, AT_FDCWD, to, 0)
    VYR_FAULT(int, fstat, (int file, struct stat* found) noexcept, SYS_fstat, file, found)
    VYR_FAULT(int, lstat, (const char* path, struct stat* found) noexcept, SYS_lstat, path, found)
    VYR_FAULT(int, syncfs, (int file) noexcept, SYS_syncfs, file)
    VYR_FAULT(int, dup, (int file) noexcept, SYS_dup, file)
    VYR_FAULT(ssize_t, copy_file_range,
              (int from, off64_t* a, int to, off64_t* b, std::size_t size, unsigned flags),
              SYS_copy_file_range, from, a, to, b, size, flags)
}
