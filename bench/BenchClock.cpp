// The wall clock of the benches, in place of that of the tests: it asks the C library for the time, as the
// component does in a node, and not the kernel, which takes longer than what is measured.

#include <atomic>
#include <ctime>

#include <dlfcn.h>
#include <sys/time.h>

#include "WallClock.h"

namespace {

constexpr std::int64_t second = 1'000'000'000;
constinit std::atomic<std::int64_t> offset{0};

int systemTime(clockid_t clock, timespec* time) {
    static const auto genuine =
        reinterpret_cast<int (*)(clockid_t, timespec*)>(::dlsym(RTLD_NEXT, "clock_gettime"));
    return genuine(clock, time);
}

}  // namespace

extern "C" {

int clock_gettime(clockid_t clock, timespec* time) noexcept {
    const int result = systemTime(clock, time);
    if (clock == CLOCK_REALTIME) {
        const std::int64_t moved = time->tv_sec * second + time->tv_nsec + offset;
        *time = {moved / second, moved % second};
    }
    return result;
}

int gettimeofday(timeval* __restrict time, void* __restrict) noexcept {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    *time = {now.tv_sec, now.tv_nsec / 1'000};
    return 0;
}

std::time_t time(std::time_t* result) noexcept {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return result != nullptr ? *result = now.tv_sec : now.tv_sec;
}
}

void VorTest::WallClock::set(std::int64_t time) {
    timespec now{};
    systemTime(CLOCK_REALTIME, &now);
    offset = time - (now.tv_sec * second + now.tv_nsec);
}

void VorTest::WallClock::shift(std::int64_t difference) {
    offset += difference;
}

void VorTest::WallClock::useSystem() {
    offset = 0;
}
