#include <gtest/gtest.h>

#include "WallClock.h"
#include "services/ClockWatch.h"

namespace VorNode {

TEST(ClockWatch, TellsOfStepsAboveHalfASecondInBothDirections) {
    constexpr std::int64_t millisecond = 1'000'000;
    const VorTest::WallClock clock(1'772'716'500'000 * millisecond);
    ClockWatch watch;
    watch.read();
    EXPECT_EQ(watch.read().step, 0);
    for (const std::int64_t step : {700, -700, 2'000, -4'000}) {
        VorTest::WallClock::shift(step * millisecond);
        EXPECT_NEAR(static_cast<double>(watch.read().step), static_cast<double>(step) * 1000, 100'000);
        EXPECT_EQ(watch.read().step, 0) << "told once";
    }
    for (const std::int64_t step : {300, -300}) {
        VorTest::WallClock::shift(step * millisecond);
        EXPECT_EQ(watch.read().step, 0) << step;
    }
}

}  // namespace VorNode
