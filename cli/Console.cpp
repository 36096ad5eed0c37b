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
#include <sys/stat.h>
#include <unistd.h>
#endif

#include "CommandLine.h"
#include "base/Text.h"

namespace vyr::cli
{
namespace
{

constexpr std::size_t barWidth = 30;
constexpr std::chrono::milliseconds redrawTime(50);

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
    std::fwrite(lines.data(), 1, lines.size(), stderr);
    std::fflush(stderr);
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

Progress::Progress(bool wanted, std::size_t total)
    : _enabled(wanted && total > 0 && isTerminal(stderr)), _total(total)
{
}

Progress::~Progress()
{
    clear();
}

void Progress::clear()
{
    if (_shown)
        complainAsIs("\r\x1b[K");
    _shown = false;
}

void Progress::show(std::size_t done)
{
    const auto now = std::chrono::steady_clock::now();
    if (!_enabled || (_shown && now - _drawn < redrawTime))
        return;
    const std::size_t filled = std::min(done, _total) * barWidth / _total;
    complainAsIs("\r[" + std::string(filled, '#') + std::string(barWidth - filled, ' ') + "] " +
                 std::to_string(done) + "/" + std::to_string(_total));
    _shown = true;
    _drawn = now;
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
