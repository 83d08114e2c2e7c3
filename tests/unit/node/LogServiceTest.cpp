#include <cstdlib>
#include <sstream>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "WallClock.h"
#include "services/LogService.h"

namespace VorNode {
namespace {

constexpr std::int64_t millisecond = 1'000'000;
/// 2026-03-05T13:15:00Z, and seven months before.
constexpr std::int64_t winter = 1'772'716'500'000 * millisecond;
constexpr std::int64_t summer = 1'754'399'700'000 * millisecond;

struct LogServiceTest : testing::Test {
    void write(int level, const char* operation, const char* text) {
        const VorMwSpiLogRecord record{level, operation, text, "file", 1, "subsystem"};
        level == 8 ? trace.trace(&record) : log.write(&record);
    }

    std::ostringstream out;
    LogService service{out};
    const VorMwSpiLog_1& log = reinterpret_cast<VorMwSpiLog_1&>(service.logInterface());
    const KelMwSpiTrace& trace = reinterpret_cast<KelMwSpiTrace&>(service.traceInterface());
};

TEST_F(LogServiceTest, writesOneLineForEachRecord) {
    ::setenv("TZ", "Europe/Berlin", 1);
    const struct {
        std::int64_t time;
        int level;
        const char *operation, *text, *line;
    } cases[] = {
        {winter + 123 * millisecond, 6, "start", "it's on",
         "2026-03-05T14:15:00.123+01:00 6 start: it's on\n"},
        {summer, 8, "run", " >> ", "2025-08-05T15:15:00.000+02:00 8 run:  >> \n"},
        {winter, 3, "a\nb", "1\n2\t3\r4\x1b\x7f\\5%s",
         "2026-03-05T14:15:00.000+01:00 3 a\\nb: 1\\n2\\t3\\x0D4\\x1B\\x7F\\5%s\n"},
        {winter, 4, nullptr, "Z\xc3\xbcrich\x80", "2026-03-05T14:15:00.000+01:00 4 : Z\xc3\xbcrich\x80\n"},
    };
    for (const auto& each : cases) {
        const VorTest::WallClock clock(each.time + millisecond / 10);
        out.str("");
        write(each.level, each.operation, each.text);
        EXPECT_EQ(out.str(), each.line);
    }
    EXPECT_EQ(service.errorCount(), 1U);
}

TEST_F(LogServiceTest, doesNotMixTheLinesOfThreads) {
    const auto writeOften = [&](char letter) {
        for (int i = 0; i < 2000; ++i)
            write(i % 2 == 0 ? 6 : 8, "op", std::string(300, letter).c_str());
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
