#include <stdexcept>

#include "PmReportNames.h"
#include "ReportTest.h"

namespace VorTest {

constexpr std::uint64_t second = 1'000'000'000;
constexpr std::uint64_t quarter = 900 * second;

class PmReportNamesTest : public StorageTest {};

TEST_F(PmReportNamesTest, tellPeriodElementAndJobGroup) {
    for (const Texts& row : goldenTable("report-names.txt")) {
        ::setenv("TZ", row[0].c_str(), 1);
        const std::uint64_t begin = std::stoull(row[1]) * second;
        EXPECT_EQ(buildReportName({begin, begin + quarter, TimeForm::Local, row[2], row[3]}), row[4])
            << row[0];
        EXPECT_EQ(buildReportName({begin, begin + quarter, TimeForm::Utc, row[2], row[3]}), row[5]) << row[0];
    }
}

TEST_F(PmReportNamesTest, areRecognisedAndHaveKeys) {
    expectRows("report-keys.txt", {{"key", [](const std::string& name) {
                                        return isValidROPFileName(name) ? generateKey(name) : "no report";
                                    }}});
    EXPECT_THROW(generateKey(""), std::out_of_range);
}

TEST_F(PmReportNamesTest, sortByKeyInTheOrderOfTime) {
    // Three days each: around both changes of daylight saving time, and in 2100.
    for (const std::uint64_t start : {1490400000 * second, 1509148800 * second, 4107456000 * second}) {
        for (const char* zone : {"CET-1", "UTC", "Asia/Kolkata", "Europe/Berlin", "America/St_Johns"}) {
            for (const TimeForm form : {TimeForm::Local, TimeForm::Utc}) {
                ::setenv("TZ", zone, 1);
                std::string before;
                for (std::uint64_t end = start; end < start + 288 * quarter; end += quarter) {
                    const std::string name = buildReportName({end - quarter, end, form, "ME1", ""});
                    ASSERT_TRUE(isValidROPFileName(name)) << name;
                    if (formatTime(end, "%H%M", form) != "0000") {
                        ASSERT_LT(before, generateKey(name)) << zone << ' ' << name;
                        before = generateKey(name);
                    }
                }
            }
        }
    }
}

}  // namespace VorTest
