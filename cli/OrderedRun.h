#pragma once

#include <cstddef>
#include <functional>

#include "Outcome.h"

namespace vyr::cli
{

/// Makes the outcome of one step on the thread of one worker.
using Work = std::function<Outcome(std::size_t worker, std::size_t step)>;
/// Takes an outcome over.
using Deliver = std::function<void(std::size_t step, const Outcome& outcome)>;

/// Does steps 0 to `count` - 1 on up to `workers` threads, the calling one among them, and delivers
/// their outcomes in the order of the steps, one at a time, as soon as all earlier ones are there.
/// A worker does one step after the other.
///
/// When a stop is requested no further step is begun; those in hand are finished and delivered.
/// @return the number of steps delivered.
/// @throws what `work` and `deliver` throw, after all threads have ended.
std::size_t runInOrder(std::size_t count, std::size_t workers, const Work& work,
                       const Deliver& deliver);

} // namespace vyr::cli
