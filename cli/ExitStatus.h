#pragma once

namespace vyr::cli
{

/// How the program ends; part of its interface, since scripts act on it.
enum class ExitStatus : int
{
    /// Everything that was asked for is done.
    Done = 0,
    /// Some materials, overlays or images failed, or a result could not be delivered; the others
    /// were written.
    SomeFailed = 1,
    /// Wrong usage, an unknown material or unreadable input: nothing was written.
    WrongUse = 2,
    /// Interrupted by the user or the system; what was written until then is whole.
    Interrupted = 130,
};

} // namespace vyr::cli
