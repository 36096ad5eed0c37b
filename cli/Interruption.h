#pragma once

namespace vyr::cli
{

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
