#pragma once

#include <chrono>
#include <cstddef>
#include <string_view>

namespace vyr::cli
{

/// To be called first. A reader of the program's output that goes away must not end the program in
/// the middle of a file; messages must not get into one; and the image library reads nothing but images.
void prepareProcess();

/// Writes one line to standard error, control characters escaped.
void complain(std::string_view line);

/// Writes whole lines to standard error as they stand.
void complainAsIs(std::string_view lines);

/// Standard output, where results go.
///
/// Not thread-safe. The first failure is told on standard error, unless it is only that the reader
/// has seen enough, and ends the output, not the program.
class Results
{
  public:
    /// Writes the text as it stands and hands it on to the reader.
    void write(std::string_view text);

    /// Whether all that was written arrived.
    bool delivered() const { return _delivered; }

    /// Whether a person is looking at them, in the same window as at standard error.
    static bool onTerminal();

    /// Whether they go to an ordinary file, where nobody waits for each.
    static bool intoFile();

  private:
    bool _delivered = true;
};

/// A progress bar on standard error; none when that is no terminal. Not thread-safe.
class Progress
{
  public:
    /// @param total number of steps; 0 draws nothing.
    Progress(bool wanted, std::size_t total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Takes the bar away, for lines to be printed in its place.
    void clear();

    /// Draws the bar after `done` steps.
    void show(std::size_t done);

  private:
    bool _enabled;
    bool _shown = false;
    std::size_t _total;
    std::chrono::steady_clock::time_point _drawn;
};

/// To be called first. From now on a request to stop (Ctrl+C, a polite kill, a closed terminal) ends
/// the program with ExitStatus::Interrupted: at once, as long as nothing is being written. Requests
/// that the program was started to ignore stay ignored.
void catchStopRequests();

/// To be called before the first file is written. From now on a request to stop ends nothing by
/// itself: what is in hand is finished whole, and nothing new begun. Asked again a while later, the
/// program ends at once.
void finishBeforeStopping();

/// Whether the program was asked to stop.
bool stopRequested();

} // namespace vyr::cli
