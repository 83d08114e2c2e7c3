// Preloaded into a program, it lets the program's wall clock start at VOR_WALL_CLOCK, in s since the Unix
// epoch.
#include <cstdlib>

#include "WallClock.h"

[[gnu::constructor]] static void startClock() {
    const char* const start = std::getenv("VOR_WALL_CLOCK");
    if (start != nullptr)
        VorTest::WallClock::set(std::atoll(start) * 1'000'000'000);
}
