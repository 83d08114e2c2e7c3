#include "services/ClockWatch.h"

#include <cstdlib>

namespace VorNode {

namespace {

constexpr Poco::Timestamp::TimeDiff smallestStep = 500'000;

/// Between reading one clock and the other at most this much may pass, far less than the smallest step.
constexpr Poco::Clock::ClockDiff longestRead = 50'000;

}  // namespace

ClockWatch::Reading ClockWatch::read() {
    Poco::Clock monotonic;
    Poco::Timestamp wall;
    while (monotonic.isElapsed(longestRead)) {
        monotonic.update();
        wall.update();
    }
    const Poco::Timestamp::TimeDiff step = (wall - _wall) - (monotonic - _monotonic);
    _wall = wall;
    _monotonic = monotonic;
    return {wall, std::abs(step) > smallestStep ? step : 0};
}

}  // namespace VorNode
