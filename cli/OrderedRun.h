#pragma once

#include <atomic>
#include <cstddef>
#include <exception>
#include <map>
#include <mutex>
#include <system_error>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "Console.h"

namespace vyr::cli
{

/// Does steps 0 to `count` - 1 on several threads and delivers their outcomes in the order of the steps, one
/// at a time, as soon as all earlier ones are there.
///
/// When a stop is requested no further step is begun; those in hand are finished and delivered.
template <class Work, class Deliver> class OrderedRun
{
  public:
    /// @param work makes the outcome: `work(worker, step)`, on the thread of that worker, which does one
    ///             step after the other.
    /// @param deliver takes it over: `deliver(step, outcome)`.
    OrderedRun(std::size_t count, const Work& work, const Deliver& deliver)
        : _count(count), _work(work), _deliver(deliver)
    {
    }

    /// Runs once, on up to `workers` threads, the calling one among them.
    /// @return the number of steps delivered.
    /// @throws what `work` and `deliver` throw, after all threads have ended.
    std::size_t on(std::size_t workers)
    {
        std::vector<std::thread> threads;
        threads.reserve(workers);
        try
        {
            for (std::size_t worker = 1; worker < workers; ++worker)
                threads.emplace_back([this, worker] { take(worker); });
        }
        catch (const std::system_error&)
        {
            // The system has no more threads to give: the ones that are there do the work.
        }
        take(0);
        for (std::thread& thread : threads)
            thread.join();
        if (_failure)
            std::rethrow_exception(_failure);
        return _delivered;
    }

  private:
    using Outcome = std::invoke_result_t<Work, std::size_t, std::size_t>;

    /// The life of one worker.
    void take(std::size_t worker)
    {
        try
        {
            while (!_failed && !stopRequested())
            {
                const std::size_t step = _next++;
                if (step >= _count)
                    return;
                hand(step, _work(worker, step));
            }
        }
        catch (...)
        {
            const std::lock_guard lock(_mutex);
            _failed = true;
            if (!_failure)
                _failure = std::current_exception();
        }
    }

    void hand(std::size_t step, Outcome&& outcome)
    {
        const std::lock_guard lock(_mutex);
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
    std::atomic<std::size_t> _next{0};
    std::atomic<bool> _failed{false};

    std::mutex _mutex;
    /// Outcomes whose turn has not come.
    std::map<std::size_t, Outcome> _waiting;
    std::size_t _delivered = 0;
    std::exception_ptr _failure;
};

} // namespace vyr::cli
