#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <limits>
#include <numeric>
#include <vector>

namespace vyr::benchmarks
{

/// Times two ways of doing the same work, in turn and piece by piece, and keeps the best time of each
/// piece: what else the machine does falls on both alike or falls out.
class PairedTiming
{
  public:
    explicit PairedTiming(std::size_t pieces)
        : _ours(pieces, std::numeric_limits<double>::infinity()), _floor(_ours)
    {
    }

    /// Does a piece in both ways.
    /// @return the seconds that ours took.
    template <class Ours, class Floor>
    double measure(std::size_t piece, const Ours& ours, const Floor& floor)
    {
        double seconds = 0;
        // Who comes second may find the way smoothed, or the disk busy.
        _oursFirst = !_oursFirst;
        if (_oursFirst)
            seconds = secondsOf(ours);
        _floor[piece] = std::min(_floor[piece], secondsOf(floor));
        if (!_oursFirst)
            seconds = secondsOf(ours);
        _ours[piece] = std::min(_ours[piece], seconds);
        return seconds;
    }

    double ours() const { return std::accumulate(_ours.begin(), _ours.end(), 0.0); }
    double floor() const { return std::accumulate(_floor.begin(), _floor.end(), 0.0); }
    double ratio() const { return ours() / floor(); }

  private:
    template <class Work> static double secondsOf(const Work& work)
    {
        const auto start = std::chrono::steady_clock::now();
        work();
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }

    std::vector<double> _ours;
    std::vector<double> _floor;
    bool _oursFirst = false;
};

} // namespace vyr::benchmarks
