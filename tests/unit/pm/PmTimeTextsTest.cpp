#include <Poco/Exception.h>

#include "PmTimeTexts.h"
#include "ReportTest.h"

namespace VorTest {

TEST(PmTimeTexts, tellPeriods) {
    for (const Texts& row : goldenTable("periods.txt")) {
        EXPECT_EQ(timePeriod2Str(static_cast<TimePeriod>(std::stoi(row[0]))), row[1]) << row[0];
    }
    EXPECT_THAT(getSupportedRopPeriods(), ElementsAre(3, 4, 5, 6, 7, 8, 9));
}

TEST(PmTimeTexts, tellAnInstantInTheZoneOfThatInstant) {
    for (const Texts& row : goldenTable("times.txt")) {
        ::setenv("TZ", row[0].c_str(), 1);
        const std::uint64_t nanoseconds = std::stoull(row[1]) * 1'000'000'000 + 709'551'615;
        EXPECT_EQ(formatTimeStamp(nanoseconds, TimeForm::Local), row[2]) << row[0];
        EXPECT_EQ(formatTimeStamp(nanoseconds, TimeForm::Utc), row[3]) << row[0];
        EXPECT_EQ(timeZoneSuffix(nanoseconds), row[4]) << row[0];
        EXPECT_EQ(convertToUtc(row[2], "%Y-%m-%dT%H:%M:%S"), row[3]);
    }
    EXPECT_THROW(convertToUtc("2017-03-05T14:60:00+01:00", "%H"), Poco::SyntaxException);
}

}  // namespace VorTest
