#pragma once

#include <Poco/Clock.h>
#include <Poco/Timestamp.h>

namespace VorNode {

/// Reads the wall clock and tells when somebody has set it: between two readings it then moved differently
/// from the monotonic clock, by more than half a second. A machine that was merely slow or stopped moved
/// both. Clocks that are adjusted gradually, or by less, are followed without a word. One thread at a time.
class ClockWatch {
  public:
    struct Reading {
        Poco::Timestamp wall;
        /// By how much, in microseconds, the wall clock was set forward (or back) since the previous reading;
        /// else 0.
        Poco::Timestamp::TimeDiff step;
    };

    Reading read();

  private:
    Poco::Timestamp _wall;
    Poco::Clock _monotonic;
};

}  // namespace VorNode
