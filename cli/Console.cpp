#include "Console.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <system_error>

#if defined(_WIN32)
#include <io.h>
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include "CommandLine.h"
#include "Json.h"
#include "base/Text.h"

namespace vyr::cli
{
namespace
{

bool inJson = false;

bool isTerminal(std::FILE* stream)
{
#if defined(_WIN32)
    return _isatty(_fileno(stream)) != 0;
#else
    return isatty(fileno(stream)) != 0;
#endif
}

constexpr int signals[] = {
    SIGINT,
    SIGTERM,
#if defined(SIGHUP)
    SIGHUP,
#endif
};

/// In seconds. A terminal and a script that both pass a request on send two at once.
constexpr std::time_t patience = 1;

std::atomic<bool> finishing{false};
std::atomic<bool> requested{false};
static_assert(std::atomic<bool>::is_always_lock_free, "used by a signal handler");

std::atomic<std::time_t> firstRequest{0};
static_assert(std::atomic<std::time_t>::is_always_lock_free, "used by a signal handler");

extern "C" void onSignal(int signal)
{
    const std::time_t now = std::time(nullptr);
    const bool impatient = requested.load() && now - firstRequest.load() > patience;
    if (!finishing.load() || impatient)
        std::_Exit(static_cast<int>(ExitStatus::Interrupted));
    if (!requested.exchange(true))
        firstRequest.store(now);
    // Some systems fall back to the default action after the first delivery.
    std::signal(signal, onSignal);
}

} // namespace

void prepareProcess()
{
#if !defined(_WIN32)
    // A file that is opened later would get the number of a stream that is closed, and messages with it.
    int opened = 0;
    while (opened >= 0 && opened <= STDERR_FILENO)
        opened = ::open("/dev/null", O_RDWR);
    if (opened > STDERR_FILENO)
        ::close(opened);
    // No colour is converted. A configuration takes the image library longer to read than most images, the one that
    // somebody names for other programs may be a pipe, and where memory runs out meanwhile the process ends.
    ::setenv("OIIO_DISABLE_OCIO", "1", 1);
    ::unsetenv("OCIO");
#else
    ::_putenv_s("OIIO_DISABLE_OCIO", "1");
#endif
#if defined(SIGPIPE)
    std::signal(SIGPIPE, SIG_IGN);
#endif
#if defined(SIGXFSZ)
    // A file that may not grow further fails its material, not the run.
    std::signal(SIGXFSZ, SIG_IGN);
#endif
#if defined(_WIN32)
    SetConsoleOutputCP(CP_UTF8);
#endif
}

void complain(std::string_view line)
{
    complainAsIs(base::printable(line) + '\n');
}

void complainAsIs(std::string_view lines)
{
    if (!inJson)
        return drawOnTerminal(lines);
    for (std::size_t end = 0; !lines.empty(); lines.remove_prefix(end))
    {
        end = std::min(lines.find('\n'), lines.size() - 1) + 1;
        const JsonDocument line;
        line.root().add("message", lines.substr(0, end - 1));
        drawOnTerminal(line.line());
    }
}

void complainInJson()
{
    inJson = true;
}

void Results::write(std::string_view text)
{
    if (!_delivered)
        return;
    errno = 0;
    _delivered =
        std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
    if (!_delivered && errno != EPIPE)
        complain("vyr-mtlx: standard output: " + std::generic_category().message(errno));
}

bool Results::onTerminal()
{
    static const bool terminal = isTerminal(stdout);
    return terminal;
}

bool Results::intoFile()
{
#if defined(_WIN32)
    return false;
#else
    struct stat status = {};
    static const bool file = ::fstat(STDOUT_FILENO, &status) == 0 && S_ISREG(status.st_mode);
    return file;
#endif
}

bool errorsOnTerminal()
{
    return isTerminal(stderr);
}

std::size_t terminalWidth()
{
    constexpr std::size_t usual = 80;
#if defined(_WIN32)
    CONSOLE_SCREEN_BUFFER_INFO screen{};
    const bool known = GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &screen) != 0;
    const int width = known ? screen.srWindow.Right - screen.srWindow.Left + 1 : 0;
#else
    struct winsize size = {};
    const int width = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
#endif
    return width > 0 ? static_cast<std::size_t>(width) : usual;
}

void drawOnTerminal(std::string_view text)
{
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fflush(stderr);
}

void catchStopRequests()
{
    for (const int signal : signals)
        if (std::signal(signal, onSignal) == SIG_IGN)
            std::signal(signal, SIG_IGN);
}

void finishBeforeStopping()
{
    finishing.store(true);
}

bool stopRequested()
{
    return requested.load();
}

} // namespace vyr::cli
