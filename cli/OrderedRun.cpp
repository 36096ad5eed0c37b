#include "OrderedRun.h"

#include <atomic>
#include <exception>
#include <map>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "Interruption.h"

namespace vyr::cli
{
namespace
{

class Run
{
  public:
    Run(std::size_t count, const Work& work, const Deliver& deliver)
        : _count(count), _work(work), _deliver(deliver)
    {
    }

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

    /// To be called when all workers have ended.
    std::size_t finish() const
    {
        if (_failure)
            std::rethrow_exception(_failure);
        return _delivered;
    }

  private:
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

} // namespace

std::size_t runInOrder(std::size_t count, std::size_t workers, const Work& work,
                       const Deliver& deliver)
{
    Run run(count, work, deliver);
    std::vector<std::thread> threads;
    threads.reserve(workers);
    try
    {
        for (std::size_t worker = 1; worker < workers; ++worker)
            threads.emplace_back(&Run::take, &run, worker);
    }
    catch (const std::system_error&)
    {
        // The system has no more threads to give: the ones that are there do the work.
    }
    run.take(0);
    for (std::thread& thread : threads)
        thread.join();
    return run.finish();
}

} // namespace vyr::cli
