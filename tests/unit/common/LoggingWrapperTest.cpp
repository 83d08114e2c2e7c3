#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "LoggingWrapper.h"

namespace VorTest {
namespace {

std::vector<std::string> logged, traced;

std::string textOf(const VorMwSpiLogRecord& record) {
    return std::to_string(record.level) + " " + record.operation + " " + record.text + " " +
           record.sourceFile + ":" + std::to_string(record.sourceLine) + " " + record.subsystem;
}

struct LoggingWrapperTest : testing::Test {
    LoggingWrapperTest() { wrapper.connect(&log, &trace); }
    ~LoggingWrapperTest() override { wrapper.connect(nullptr, nullptr); }

    void warn() {
        logged.clear();
        traced.clear();
        wrapper.log(Vor::LogLevel::Warning, "op", "file", 7, "PM", "%d of %s", 2, "three");
    }

    const VorMwSpiLog_1 log{{}, [](const auto* record) { logged.push_back(textOf(*record)); }};
    const VorMwSpiLog_1 throwingLog{{}, [](const auto*) { throw 1; }};
    const KelMwSpiTrace trace{{}, [](const auto* record) { traced.push_back(textOf(*record)); }};
    Vor::LoggingWrapper& wrapper = Vor::LoggingWrapper::instance();
    const std::vector<std::string> warning{"4 op 2 of three file:7 PM"};
};

}  // namespace

TEST_F(LoggingWrapperTest, HandsEachMessageToTheLogAndToTheTrace) {
    warn();
    EXPECT_EQ(logged, warning);
    EXPECT_EQ(traced, warning);
}

TEST_F(LoggingWrapperTest, HandsNothingOnAboveTheLevel) {
    wrapper.setLevel(3);
    warn();
    wrapper.setLevel(Vor::LoggingWrapper::defaultLevel);
    EXPECT_TRUE(logged.empty() && traced.empty());
}

TEST_F(LoggingWrapperTest, GivesTheTraceWhatALogRefusesOrNobodyTakes) {
    for (const VorMwSpiLog_1* refusing : {&throwingLog, static_cast<const VorMwSpiLog_1*>(nullptr)}) {
        wrapper.connect(refusing, &trace);
        warn();
        EXPECT_EQ(traced, warning);
    }
}

}  // namespace VorTest
