#include <gtest/gtest.h>

#include "LogCapture.h"
#include "Logging.h"
#include "LoggingWrapper.h"

namespace VorTest {

using Vor::LoggingWrapper;

using Vor::traceSubsystem;

TEST(LoggingWrapper, WritesTheMessagesOfItsLevelAndBelow) {
    LogCapture log;
    const struct {
        int level;
        std::string written;
    } rows[] = {{2, ""}, {3, "3 "}, {4, "3 4 "}, {5, "3 4 "}, {6, "3 4 6 "}, {7, "3 4 6 "}, {8, "3 4 6 8 "}};
    for (const auto& row : rows) {
        LoggingWrapper::instance().setLevel(row.level);
        LOG_ERROR("error");
        LOG_WARNING("warning");
        LOG_INFORMATION("information");
        LOG_TRACE("trace");
        std::string written;
        for (const LogLine& line : log.lines())
            written += std::to_string(line.level) + " ";
        EXPECT_EQ(written, row.written) << row.level;
        log.clear();
    }
}

TEST(LoggingWrapper, EvaluatesTheArgumentsOfATraceOnlyWhenItIsWritten) {
    const LogCapture log;
    int evaluations = 0;
    LoggingWrapper::instance().setLevel(LoggingWrapper::traceLevel - 1);
    LOG_TRACE("%d", ++evaluations);
    EXPECT_EQ(evaluations, 0);
    LoggingWrapper::instance().setLevel(LoggingWrapper::traceLevel);
    LOG_TRACE("%d", ++evaluations);
    EXPECT_EQ(evaluations, 1);
}

}  // namespace VorTest
