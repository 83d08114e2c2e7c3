#include <iomanip>
#include <sstream>

#include <Poco/Clock.h>
#include <gtest/gtest.h>

#include "Framework.h"

namespace VorTest {
namespace {

constexpr std::int64_t steps[] = {1, -1, 60, -60, 3'600, -3'600, 86'400, -86'400};

std::string localText(std::int64_t time, const char* format) {
    std::tm local{};
    std::ostringstream text;
    text << std::put_time(localtime_r(&time, &local), format);
    return text.str();
}
std::string stampOf(const std::string& edge, std::int64_t time) {
    return edge + "Time=\"" + localText(time, "%Y-%m-%dT%H:%M:%S%z").insert(22, ":") + "\"";
}
/// The name of the report of the minute to `end`.
std::string nameOf(std::int64_t end) {
    return localText(end - 60, "A%Y%m%d.%H%M%z-") + localText(end, "%H%M%z_vor-node.xml");
}

struct ClockTest : testing::Test {
    ClockTest() {
        ::setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
        ::tzset();
        EXPECT_EQ(Framework::initialize(engine) + Framework::start(), 0);
    }
    ~ClockTest() override {
        std::printf("clock: %d steps, %d reports, violations %d\n", stepCount, reportCount,
                    testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count());
    }
    /// Whether a GP of the minute to `end` is taken. Returns when it has been handed back.
    bool announce(std::int64_t now, std::int64_t end) {
        EXPECT_EQ(engine.announce("Processor", now - minute, end - minute), 0);
        engine.await("releaseGp2 " + std::to_string(engine.announced));
        const bool taken = engine.messages().empty();
        gps += taken ? " " + std::to_string(engine.announced) : "";
        return taken;
    }
    /// The one report is of the minute to `end`, throughout, and has the GPs taken since the last one.
    void expectReport(std::int64_t end) {
        ASSERT_EQ(engine.reports(), Texts{nameOf(end) + ":" + std::exchange(gps, "")});
        const auto file = engine.root.reportFolder() / nameOf(end);
        const std::string text = readFile(file),
                          rest = Poco::replace(text, stampOf("end", end), std::string());
        EXPECT_TRUE(text.find(stampOf("begin", end - 60)) < rest.size() && rest.find("endTime") == rest.npos)
            << text;
        std::filesystem::remove(file);
        ++reportCount;
    }
    void restartAndExpectReport(std::int64_t end) {
        EXPECT_EQ(Framework::stop(), 0);
        expectReport(end);
        EXPECT_EQ(Framework::start(), 0);
    }

    int stepCount = 0, reportCount = 0;
    std::string gps;
    PmEngine engine;
    const std::vector<Texts> places = goldenTable("clock.txt");
};

}  // namespace

TEST_F(ClockTest, StepsHarmNoReport) {
    const auto step = [this](std::int64_t at, std::int64_t second, std::int64_t difference, bool isOpen) {
        const std::int64_t now = at + second + difference, next = now - now % 60 + 60;
        const bool isTaken = isOpen || now % 60 < 50;
        EXPECT_TRUE(!isOpen || announce(at + std::min<std::int64_t>(second, 49), at));
        EXPECT_EQ(announce(now, now), isTaken) << now;
        if (isTaken)
            restartAndExpectReport(isOpen ? at : now);
        EXPECT_TRUE(announce(next, next)) << "the next full minute";
        restartAndExpectReport(next);
        ++stepCount;
    };
    for (const Texts& place : places) {
        EXPECT_EQ(nameOf(std::stoll(place[0])), place[2]);
        for (const std::int64_t second : {std::stol(place[1]), 49L, 59L})
            for (const bool isOpen : {true, false})
                for (const std::int64_t difference : steps)
                    step(std::stoll(place[0]), second, difference, isOpen);
    }
    EXPECT_EQ(Framework::stop(), 0);
}

TEST_F(ClockTest, PhasesLastAsLongWhateverTheClockDoes) {
    const auto announceEverywhere = [this](std::int64_t second, bool isTaken) {
        for (const Texts& place : places)
            for (const std::int64_t step : steps) {
                const std::int64_t now = std::stoll(place[0]) + second + step;
                EXPECT_EQ(announce(now, now), isTaken) << now;
                ++stepCount;
            }
    };
    const Poco::Clock began;
    EXPECT_TRUE(announce(minute + 48, minute));
    announceEverywhere(12, true);
    engine.await("publishReport <<");
    EXPECT_NEAR(static_cast<double>(began.elapsed()), 3e6, 1.2e6) << "2 s, and what a slow machine takes";
    expectReport(minute);
    announceEverywhere(55, false);
    EXPECT_TRUE(announce(minute + 60, minute + 60));
    restartAndExpectReport(minute + 60);
    EXPECT_EQ(Framework::stop(), 0);
}

}  // namespace VorTest
