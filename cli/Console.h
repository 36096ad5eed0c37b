#pragma once

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

/// From now on each line on standard error is an object in JSON: what was a text is its "message".
void complainInJson();

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

/// Whether standard error is a terminal, and how many columns it has.
bool errorsOnTerminal();
std::size_t terminalWidth();

/// Writes to standard error what is no line of its own.
void drawOnTerminal(std::string_view text);

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
