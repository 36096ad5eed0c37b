#include "Interruption.h"

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <ctime>

#include "ExitStatus.h"

namespace vyr::cli
{
namespace
{

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

void catchStopRequests()
{
    for (const int signal : signals)
    {
        if (std::signal(signal, onSignal) == SIG_IGN)
            std::signal(signal, SIG_IGN);
    }
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
