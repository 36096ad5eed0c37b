// Lets calls of the system fail in a program that loads this library first, from the beginning of main() on.
//
// VYR_FAULTS has words:
//     rename=5        every such call fails, with this number of an error
//     rename@3=5      the third one does
//     rename@3+=5     the third one does, and all after it
//     rename@3=kill   the process dies instead of the third one; a write writes half of its bytes first
//     short           each write takes half of its bytes, with interruptions
//     noisy           the process prints while it writes
// VYR_FAULTS_COUNTS names a file that gets, at the end, a line "<call> <number of calls>" for each call that was made.
// VYR_FAULTS_STACK says that the stack is printed where a call fails; where the process crashes it always is.

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string_view>
#include <type_traits>

#include <dirent.h>
#include <dlfcn.h>
#include <execinfo.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

// "flock" and "stat" are structs too.
#pragma GCC diagnostic ignored "-Wshadow"

extern "C"
{
    // glibc's own names of the functions that are replaced here.
    void* __libc_malloc(std::size_t) noexcept;
    void* __libc_calloc(std::size_t, std::size_t) noexcept;
    void* __libc_realloc(void*, std::size_t) noexcept;
    void* __libc_memalign(std::size_t, std::size_t) noexcept;
}

namespace
{

// clang-format off
#define VYR_CALLS(X)                                                                               \
    X(open) X(tmpfile) X(fopen) X(opendir) X(readdir) X(read) X(pread) X(write) X(pwrite) X(writev) X(lseek)        \
    X(close) X(fstat) X(lstat) X(stat) X(fstatat) X(access) X(readlink) X(realpath) X(getcwd) X(rename) X(renameat2) X(link) X(linkat)  \
    X(unlink) X(remove) X(rmdir) X(mkdir) X(ftruncate) X(futimens) X(fsync) X(fdatasync) X(syncfs) X(flock)         \
    X(dup) X(fcntl) X(copy_file_range) X(sendfile) X(mmap) X(malloc) X(calloc) X(realloc) X(memalign) X(getrandom)  \
    X(thread)
// clang-format on

enum Call : std::size_t
{
#define VYR_CALL(name) call_##name,
    VYR_CALLS(VYR_CALL)
#undef VYR_CALL
};

constexpr std::string_view names[] = {
#define VYR_CALL(name) #name,
    VYR_CALLS(VYR_CALL)
#undef VYR_CALL
};

constexpr int killed = -1;
constexpr std::size_t noCall = std::numeric_limits<std::size_t>::max();

struct Fault
{
    std::size_t first = noCall;
    std::size_t last = 0;
    int error = 0;
};

// Nothing here may allocate.
std::array<Fault, std::size(names)> faults;
std::array<std::atomic<std::size_t>, std::size(names)> counts;
bool isShort = false;
bool isNoisy = false;
bool printsStack = false;
std::atomic<bool> isArmed{false};

void printStack(const char* title)
{
    isArmed = false;
    std::array<void*, 60> frames{};
    const int depth = ::backtrace(frames.data(), static_cast<int>(frames.size()));
    ::syscall(SYS_write, STDERR_FILENO, title, std::strlen(title));
    ::backtrace_symbols_fd(frames.data(), depth, STDERR_FILENO);
}

void crashed(int signal)
{
    ::signal(signal, SIG_DFL);
    printStack("crashed\n");
    ::raise(signal);
}

/// One word of VYR_FAULTS.
void readFault(std::string_view word)
{
    isShort = isShort || word == "short";
    isNoisy = isNoisy || word == "noisy";
    const std::size_t equals = word.find('=');
    const std::string_view target = word.substr(0, equals);
    const std::size_t at = target.find('@');
    const auto* name = std::find(std::begin(names), std::end(names), target.substr(0, at));
    if (equals == word.npos || name == std::end(names))
        return;
    Fault& fault = faults[static_cast<std::size_t>(name - std::begin(names))];
    const bool goesOn = at == target.npos || target.back() == '+';
    fault.first = at == target.npos ? 1 : std::strtoul(target.data() + at + 1, nullptr, 10);
    fault.last = goesOn ? noCall : fault.first;
    fault.error = word.substr(equals + 1) == "kill" ? killed : std::atoi(word.data() + equals + 1);
}

void arm()
{
    const char* const text = std::getenv("VYR_FAULTS");
    for (std::string_view left = text ? text : ""; !left.empty();)
    {
        const std::size_t end = std::min(left.find(' '), left.size());
        readFault(left.substr(0, end));
        left.remove_prefix(std::min(end + 1, left.size()));
    }
    printsStack = std::getenv("VYR_FAULTS_STACK") != nullptr;
    // It takes memory the first time.
    void* frame = nullptr;
    ::backtrace(&frame, 1);
    // A stack that has run over needs another one for its handler.
    static char other[1 << 16];
    stack_t stack = {};
    stack.ss_sp = other;
    stack.ss_size = sizeof other;
    ::sigaltstack(&stack, nullptr);
    struct sigaction action = {};
    action.sa_handler = crashed;
    action.sa_flags = SA_ONSTACK;
    for (const int signal : {SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL})
        ::sigaction(signal, &action, nullptr);
    isArmed = true;
}

void writeCounts()
{
    const bool wasArmed = isArmed.exchange(false);
    const char* const path = std::getenv("VYR_FAULTS_COUNTS");
    std::FILE* const file = path && wasArmed ? std::fopen(path, "w") : nullptr;
    for (std::size_t call = 0; file && call < std::size(names); ++call)
        if (counts[call] != 0)
            std::fprintf(file, "%s %zu\n", names[call].data(), counts[call].load());
    if (file)
        std::fclose(file);
}

enum class Answer
{
    Passes,
    Fails,
    Dies,
};

Answer answerTo(Call call)
{
    if (!isArmed)
        return Answer::Passes;
    const std::size_t number = ++counts[call];
    const Fault& fault = faults[call];
    if (number < fault.first || number > fault.last)
        return Answer::Passes;
    if (fault.error == killed)
        return Answer::Dies;
    if (printsStack)
    {
        printStack("failed\n");
        isArmed = true;
    }
    errno = fault.error;
    return Answer::Fails;
}

bool fails(Call call)
{
    const Answer answer = answerTo(call);
    if (answer == Answer::Dies)
        ::kill(::getpid(), SIGKILL);
    return answer == Answer::Fails;
}

template <class... Arguments> long unless(Call call, long number, Arguments... arguments)
{
    return fails(call) ? -1 : ::syscall(number, arguments...);
}

/// The function of the C library that one of ours stands before.
template <class Function> Function* next(const char* name)
{
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

int (*realMain)(int, char**, char**) = nullptr;

int armedMain(int argc, char** argv, char** environment)
{
    arm();
    std::atexit(writeCounts);
    return realMain(argc, argv, environment);
}

} // namespace

extern "C"
{
    int __libc_start_main(int (*main)(int, char**, char**), int argc, char** argv, void (*init)(),
                          void (*fini)(), void (*loaderFini)(), void* stackEnd)
    {
        realMain = main;
        return next<decltype(__libc_start_main)>("__libc_start_main")(armedMain, argc, argv, init,
                                                                      fini, loaderFini, stackEnd);
    }

    int open(const char* path, int flags, ...)
    {
        std::va_list list;
        va_start(list, flags);
        const unsigned mode = va_arg(list, unsigned);
        va_end(list);
        const bool isUnnamed = (flags & O_TMPFILE) == O_TMPFILE;
        return static_cast<int>(
            unless(isUnnamed ? call_tmpfile : call_open, SYS_openat, AT_FDCWD, path, flags, mode));
    }

    ssize_t write(int descriptor, const void* bytes, std::size_t size)
    {
        static bool isInterrupted = false;
        for (int standard = 0; standard < 3 && isNoisy; ++standard)
            ::syscall(SYS_write, standard, "X", 1);
        const Answer answer = answerTo(call_write);
        if (answer == Answer::Fails)
            return -1;
        if (answer == Answer::Dies)
        {
            ::syscall(SYS_write, descriptor, bytes, size / 2);
            ::kill(::getpid(), SIGKILL);
        }
        if (!isShort || size < 4)
            return ::syscall(SYS_write, descriptor, bytes, size);
        isInterrupted = !isInterrupted;
        errno = EINTR;
        return isInterrupted ? -1 : ::syscall(SYS_write, descriptor, bytes, size / 2);
    }

    int fcntl(int descriptor, int command, ...)
    {
        std::va_list list;
        va_start(list, command);
        void* const argument = va_arg(list, void*);
        va_end(list);
        return static_cast<int>(unless(call_fcntl, SYS_fcntl, descriptor, command, argument));
    }

    /// The descriptor is closed all the same, as Linux does.
    int close(int descriptor)
    {
        const bool failed = fails(call_close);
        const int error = errno;
        const auto closed = static_cast<int>(::syscall(SYS_close, descriptor));
        errno = failed ? error : errno;
        return failed ? -1 : closed;
    }

    // A call that only passes its arguments on. The last arguments are those that the kernel wants.
#define VYR_FAULT(type, name, parameters, ...)                                                     \
    type name parameters                                                                           \
    {                                                                                              \
        return static_cast<type>(unless(call_##name, __VA_ARGS__));                                \
    }
    VYR_FAULT(int, flock, (int file, int what) noexcept, SYS_flock, file, what)
    VYR_FAULT(int, linkat, (int from, const char* a, int to, const char* b, int flags) noexcept,
              SYS_linkat, from, a, to, b, flags)
    VYR_FAULT(int, link, (const char* from, const char* to) noexcept, SYS_linkat, AT_FDCWD, from,
              AT_FDCWD, to, 0)
    VYR_FAULT(int, rename, (const char* from, const char* to) noexcept, SYS_renameat2, AT_FDCWD,
              from, AT_FDCWD, to, 0)
    VYR_FAULT(int, renameat2,
              (int from, const char* a, int to, const char* b, unsigned flags) noexcept,
              SYS_renameat2, from, a, to, b, flags)
    VYR_FAULT(int, fstat, (int file, struct stat* found) noexcept, SYS_fstat, file, found)
    VYR_FAULT(int, lstat, (const char* path, struct stat* found) noexcept, SYS_lstat, path, found)
    VYR_FAULT(int, stat, (const char* path, struct stat* found) noexcept, SYS_stat, path, found)
    VYR_FAULT(int, fstatat, (int folder, const char* path, struct stat* found, int flags) noexcept,
              SYS_newfstatat, folder, path, found, flags)
    VYR_FAULT(int, access, (const char* path, int mode) noexcept, SYS_faccessat, AT_FDCWD, path,
              mode)
    VYR_FAULT(ssize_t, readlink, (const char* path, char* text, std::size_t size) noexcept,
              SYS_readlink, path, text, size)
    VYR_FAULT(int, syncfs, (int file) noexcept, SYS_syncfs, file)
    VYR_FAULT(int, fsync, (int file), SYS_fsync, file)
    VYR_FAULT(int, fdatasync, (int file), SYS_fdatasync, file)
    VYR_FAULT(int, ftruncate, (int file, off64_t size) noexcept, SYS_ftruncate, file, size)
    VYR_FAULT(int, futimens, (int file, const struct timespec* times) noexcept, SYS_utimensat, file,
              nullptr, times, 0)
    VYR_FAULT(int, dup, (int file) noexcept, SYS_dup, file)
    VYR_FAULT(int, unlink, (const char* path) noexcept, SYS_unlink, path)
    VYR_FAULT(int, rmdir, (const char* path) noexcept, SYS_rmdir, path)
    VYR_FAULT(int, mkdir, (const char* path, mode_t mode) noexcept, SYS_mkdir, path, mode)
    VYR_FAULT(ssize_t, read, (int file, void* bytes, std::size_t size), SYS_read, file, bytes, size)
    VYR_FAULT(ssize_t, pread, (int file, void* bytes, std::size_t size, off64_t at), SYS_pread64,
              file, bytes, size, at)
    VYR_FAULT(ssize_t, pwrite, (int file, const void* bytes, std::size_t size, off64_t at),
              SYS_pwrite64, file, bytes, size, at)
    VYR_FAULT(ssize_t, writev, (int file, const struct iovec* parts, int count), SYS_writev, file,
              parts, count)
    VYR_FAULT(off64_t, lseek, (int file, off64_t at, int from) noexcept, SYS_lseek, file, at, from)
    VYR_FAULT(ssize_t, getrandom, (void* bytes, std::size_t size, unsigned flags), SYS_getrandom,
              bytes, size, flags)
    VYR_FAULT(ssize_t, sendfile, (int to, int from, off64_t* at, std::size_t size) noexcept,
              SYS_sendfile, to, from, at, size)
    VYR_FAULT(ssize_t, copy_file_range,
              (int from, off64_t* a, int to, off64_t* b, std::size_t size, unsigned flags),
              SYS_copy_file_range, from, a, to, b, size, flags)

    // A call that the C library answers; its failure is said in another way than by -1.
#define VYR_PASSED(type, name, failure, parameters, arguments)                                     \
    type name parameters                                                                           \
    {                                                                                              \
        static const auto passed = next<type parameters>(#name);                                   \
        return fails(call_##name) ? failure : passed arguments;                                    \
    }
    VYR_PASSED(std::FILE*, fopen, nullptr, (const char* path, const char* mode), (path, mode))
    VYR_PASSED(DIR*, opendir, nullptr, (const char* path), (path))
    VYR_PASSED(struct dirent*, readdir, nullptr, (DIR * folder), (folder))
    VYR_PASSED(char*, realpath, nullptr, (const char* path, char* found) noexcept, (path, found))
    VYR_PASSED(char*, getcwd, nullptr, (char* path, std::size_t size) noexcept, (path, size))
    VYR_PASSED(int, remove, -1, (const char* path) noexcept, (path))

    void* mmap(void* at, std::size_t size, int protection, int flags, int file,
               off64_t offset) noexcept
    {
        const long mapped = unless(call_mmap, SYS_mmap, at, size, protection, flags, file, offset);
        return reinterpret_cast<void*>(mapped);
    }

    int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*),
                       void* argument) noexcept
    {
        static const auto passed =
            next<int(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*)>("pthread_create");
        return fails(call_thread) ? EAGAIN : passed(thread, attributes, start, argument);
    }

    void* malloc(std::size_t size) noexcept
    {
        return fails(call_malloc) ? nullptr : __libc_malloc(size);
    }
    void* calloc(std::size_t count, std::size_t size) noexcept
    {
        return fails(call_calloc) ? nullptr : __libc_calloc(count, size);
    }
    void* realloc(void* memory, std::size_t size) noexcept
    {
        return fails(call_realloc) ? nullptr : __libc_realloc(memory, size);
    }
    void* memalign(std::size_t alignment, std::size_t size) noexcept
    {
        return fails(call_memalign) ? nullptr : __libc_memalign(alignment, size);
    }
    void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept
    {
        return memalign(alignment, size);
    }
    int posix_memalign(void** memory, std::size_t alignment, std::size_t size) noexcept
    {
        *memory = memalign(alignment, size);
        return *memory ? 0 : ENOMEM;
    }

    int openat(int folder, const char* path, int flags, ...)
    {
        std::va_list list;
        va_start(list, flags);
        const unsigned mode = va_arg(list, unsigned);
        va_end(list);
        return static_cast<int>(unless(call_open, SYS_openat, folder, path, flags, mode));
    }

    // The names of programs that were built for large files.
    int open64(const char* path, int flags, ...)
    {
        std::va_list list;
        va_start(list, flags);
        const unsigned mode = va_arg(list, unsigned);
        va_end(list);
        return open(path, flags, mode);
    }
    std::FILE* fopen64(const char* path, const char* mode)
    {
        return fopen(path, mode);
    }
    struct dirent64* readdir64(DIR* folder)
    {
        return reinterpret_cast<struct dirent64*>(readdir(folder));
    }
    off64_t lseek64(int file, off64_t at, int from) noexcept
    {
        return lseek(file, at, from);
    }
    ssize_t pread64(int file, void* bytes, std::size_t size, off64_t at)
    {
        return pread(file, bytes, size, at);
    }
    void* mmap64(void* at, std::size_t size, int protection, int flags, int file,
                 off64_t offset) noexcept
    {
        return mmap(at, size, protection, flags, file, offset);
    }
    int fstat64(int file, struct stat64* found) noexcept
    {
        return fstat(file, reinterpret_cast<struct stat*>(found));
    }
    int stat64(const char* path, struct stat64* found) noexcept
    {
        return stat(path, reinterpret_cast<struct stat*>(found));
    }
    int lstat64(const char* path, struct stat64* found) noexcept
    {
        return lstat(path, reinterpret_cast<struct stat*>(found));
    }
}
