#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

#include "CommandLine.h"

/// @file
/// How far a run is, on standard error.
namespace vyr::cli
{

/// How long the rest of a run takes, once that can be told.
class TimeLeft
{
  public:
    using Clock = std::chrono::steady_clock;

    explicit TimeLeft(Clock::time_point begin) : _begin(begin), _noted(begin) {}

    /// @return nothing while two guesses, a second apart, differ by much.
    std::optional<std::chrono::seconds> after(std::size_t done, std::size_t total,
                                              Clock::time_point now);

  private:
    Clock::time_point _begin;
    Clock::time_point _noted;
    /// When the end was expected at `_noted`.
    std::optional<Clock::time_point> _end;
    bool _stable = false;
};

/// A bar on a terminal that can draw one, or a line of JSON from time to time. Not thread-safe.
class Progress
{
  public:
    /// @param total number of steps; 0 draws nothing.
    Progress(ProgressForm form, std::size_t total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Takes the bar away, for lines to be printed in its place.
    void clear();

    /// Tells of `done` steps, not too often, but always of the last one.
    void show(std::size_t done, std::size_t failed);

  private:
    void draw(std::size_t done, std::optional<std::chrono::seconds> left);

    ProgressForm _form;
    bool _shown = false;
    std::size_t _total;
    TimeLeft _timeLeft;
    TimeLeft::Clock::time_point _told;
};

} // namespace vyr::cli
