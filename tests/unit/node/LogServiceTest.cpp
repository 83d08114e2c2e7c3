#include <cstdlib>
#include <sstream>
#include <thread>

#include <gtest/gtest.h>

#include "WallClock.h"
#include "services/LogService.h"

namespace VorNode {
namespace {

/// 2026-03-05T13:15:00Z, and seven months before.
constexpr std::int64_t millisecond = 1'000'000, winter = 1'772'716'500'000 * millisecond,
                       summer = 1'754'399'700'000 * millisecond;

struct LogServiceTest : testing::Test {
    void write(int level, const char* operation, const std::string& text) {
        const VorMwSpiLogRecord record{level, operation, text.c_str(), "file", 1, "subsystem"};
        level == 8 ? trace.trace(&record) : log.write(&record);
    }

    std::ostringstream out;
    LogService service{out};
    const VorMwSpiLog_1& log = reinterpret_cast<VorMwSpiLog_1&>(service.logInterface());
    const KelMwSpiTrace& trace = reinterpret_cast<KelMwSpiTrace&>(service.traceInterface());
};

TEST_F(LogServiceTest, writesOneLineForEachRecord) {
    ::setenv("TZ", "Europe/Berlin", 1);
    VorTest::WallClock clock(winter + 123 * millisecond + millisecond / 10);
    write(4, nullptr, "Z\xc3\xbcrich\x80 it's on");
    VorTest::WallClock::set(summer + millisecond / 10);
    write(8, "run", " >> ");
    VorTest::WallClock::set(summer + millisecond / 10);
    write(3, "a\nb", "1\n2\t3\r4\x1b\x7f\\5%s");
    EXPECT_EQ(out.str(),
              "2026-03-05T14:15:00.123+01:00 4 : Z\xc3\xbcrich\x80 it's on\n"
              "2025-08-05T15:15:00.000+02:00 8 run:  >> \n"
              "2025-08-05T15:15:00.000+02:00 3 a\\nb: 1\\n2\\t3\\x0D4\\x1B\\x7F\\5%s\n");
    EXPECT_EQ(service.errorCount(), 1U);
}

TEST_F(LogServiceTest, writesAMessageOnceThoughTheTraceGetsItToo) {
    const VorMwSpiLogRecord record{4, "op", "text", "file", 1, "subsystem"};
    log.write(&record);
    trace.trace(&record);
    EXPECT_TRUE(out.str().ends_with(" 4 op: text\n")) << out.str();
    EXPECT_EQ(out.str().find('\n'), out.str().size() - 1);
}

TEST_F(LogServiceTest, doesNotMixTheLinesOfThreads) {
    const auto writeOften = [this](char letter) {
        for (int i = 0; i < 2000; ++i)
            write(i % 2 == 0 ? 6 : 8, "op", std::string(300, letter));
    };
    std::thread other(writeOften, 'a');
    writeOften('b');
    other.join();
    std::istringstream written(out.str());
    int lines = 0;
    for (std::string line; std::getline(written, line); ++lines)
        ASSERT_EQ(line.substr(line.find("op: ")), "op: " + std::string(300, line.back()));
    EXPECT_EQ(lines, 2 * 2000);
}

}  // namespace
}  // namespace VorNode
