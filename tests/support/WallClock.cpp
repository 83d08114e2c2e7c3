#include "WallClock.h"

#include <atomic>
#include <ctime>

#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

constexpr std::int64_t second = 1'000'000'000;

/// How far the program's wall clock is ahead of the system's.
constinit std::atomic<std::int64_t> offset{0};

std::int64_t systemTime(clockid_t clock) {
    timespec time{};
    syscall(SYS_clock_gettime, clock, &time);
    return time.tv_sec * second + time.tv_nsec;
}

}  // namespace

namespace VorTest {

void WallClock::set(std::int64_t time) {
    offset = time - systemTime(CLOCK_REALTIME);
}

void WallClock::shift(std::int64_t difference) {
    offset += difference;
}

void WallClock::useSystem() {
    offset = 0;
}

}  // namespace VorTest

// These take the place of the C library's own in the whole program.
extern "C" {

int clock_gettime(clockid_t clock, timespec* time) noexcept {
    const long result = syscall(SYS_clock_gettime, clock, time);
    if (result == 0 && (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE)) {
        const std::int64_t moved = time->tv_sec * second + time->tv_nsec + offset;
        time->tv_sec = moved / second;
        time->tv_nsec = moved % second;
    }
    return static_cast<int>(result);
}

int gettimeofday(timeval* __restrict time, void* __restrict) noexcept {
    const std::int64_t moved = systemTime(CLOCK_REALTIME) + offset;
    time->tv_sec = moved / second;
    time->tv_usec = moved % second / 1000;
    return 0;
}

std::time_t time(std::time_t* result) noexcept {
    const std::time_t now = (systemTime(CLOCK_REALTIME) + offset) / second;
    if (result != nullptr)
        *result = now;
    return now;
}
}
