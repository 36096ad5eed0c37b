#pragma once

#include <cstddef>
#include <exception>
#include <system_error>
#include <thread>
#include <vector>

namespace vyr::base
{

/// Calls `work(0)` to `work(count - 1)`, each on a thread of its own, the first one on the calling thread; on
/// that one too what the system has no more threads for, one after the other at the end.
/// @throws what the first of them to throw did, by their numbers, when all have ended.
template <class Work> void sideBySide(std::size_t count, const Work& work)
{
    std::vector<std::exception_ptr> failures(count);
    const auto guarded = [&](std::size_t number)
    {
        try
        {
            work(number);
        }
        catch (...)
        {
            failures[number] = std::current_exception();
        }
    };
    std::vector<std::thread> threads;
    threads.reserve(count);
    std::size_t next = 1;
    try
    {
        for (; next < count; ++next)
            threads.emplace_back(guarded, next);
    }
    catch (const std::system_error&)
    {
        // The others follow below.
    }
    if (count > 0)
        guarded(0);
    for (; next < count; ++next)
        guarded(next);
    for (std::thread& thread : threads)
        thread.join();
    for (const std::exception_ptr& failure : failures)
        if (failure)
            std::rethrow_exception(failure);
}

} // namespace vyr::base
