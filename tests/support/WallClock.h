#pragma once

#include <cstdint>

namespace VorTest {

/// Moves the wall clock of the program it is linked into, libraries included, for as long as an object lives;
/// at most one does. The clock runs on from where it is set. The monotonic clock, and waits for it, stay as
/// they are. Any thread.
class WallClock {
  public:
    /// Times are nanoseconds since the Unix epoch.
    explicit WallClock(std::int64_t time) { set(time); }
    ~WallClock() { useSystem(); }
    WallClock(const WallClock&) = delete;
    WallClock& operator=(const WallClock&) = delete;

    static void set(std::int64_t time);
    static void shift(std::int64_t difference);
    static void useSystem();
};

}  // namespace VorTest
