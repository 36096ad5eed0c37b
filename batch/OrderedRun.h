#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <map>
#include <mutex>
#include <type_traits>
#include <utility>

#include "base/SideBySide.h"

namespace vyr::batch
{

/// Does steps 0 to `count` - 1 on several threads and delivers their outcomes in the order of the steps, one
/// at a time, as soon as all earlier ones are there.
///
/// When a stop is asked for no further step is begun; those in hand are finished and delivered.
template <class Work, class Deliver> class OrderedRun
{
  public:
    /// @param work makes the outcome: `work(worker, step)`, on the thread of that worker, which does one
    ///             step after the other.
    /// @param deliver takes it over: `deliver(step, outcome)`.
    /// @param stop tells whether to stop; called on any of the threads.
    OrderedRun(std::size_t count, const Work& work, const Deliver& deliver,
               std::function<bool()> stop)
        : _count(count), _work(work), _deliver(deliver), _stop(std::move(stop))
    {
    }

    /// Runs once, on up to `workers` threads, the calling one among them.
    /// @return the number of steps delivered.
    /// @throws what `work` and `deliver` throw, after all threads have ended.
    std::size_t on(std::size_t workers)
    {
        base::sideBySide(workers, [this](std::size_t worker) { take(worker); });
        return _delivered;
    }

  private:
    using Outcome = std::invoke_result_t<Work, std::size_t, std::size_t>;

    /// The life of one worker.
    void take(std::size_t worker)
    {
        try
        {
            while (!_failed && !_stop())
            {
                const std::size_t step = _next++;
                if (step >= _count)
                    return;
                hand(step, _work(worker, step));
            }
        }
        catch (...)
        {
            _failed = true;
            throw;
        }
    }

    void hand(std::size_t step, Outcome&& outcome)
    {
        const std::lock_guard lock(_mutex);
        if (step == _delivered)
        {
            _deliver(step, outcome);
            ++_delivered;
        }
        else
            _waiting.emplace(step, std::move(outcome));
        while (!_waiting.empty() && _waiting.begin()->first == _delivered)
        {
            _deliver(_delivered, _waiting.begin()->second);
            _waiting.erase(_waiting.begin());
            ++_delivered;
        }
    }

    const std::size_t _count;
    const Work& _work;
    const Deliver& _deliver;
    const std::function<bool()> _stop;
    std::atomic<std::size_t> _next{0};
    std::atomic<bool> _failed{false};

    std::mutex _mutex;
    /// Outcomes whose turn has not come.
    std::map<std::size_t, Outcome> _waiting;
    std::size_t _delivered = 0;
};

} // namespace vyr::batch
