#include "Interruption.h"

#include <atomic>
#include <csignal>
#include <cstdlib>

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

std::atomic<bool> finishing{false};
std::atomic<bool> requested{false};
static_assert(std::atomic<bool>::is_always_lock_free, "used by a signal handler");

extern "C" void onSignal(int signal)
{
    if (!finishing.load())
        std::_Exit(static_cast<int>(ExitStatus::Interrupted));
    requested.store(true);
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
