#include <Poco/TemporaryFile.h>
#include <gmock/gmock.h>

#include "Golden.h"
#include "InputError.h"
#include "counters/RecordedCounters.h"

namespace VorNode {

TEST(RecordedCounters, deliverTheSameDataAtEveryCutOfAJobOfTheFile) {
    RecordedCounters counters(VOR_GOLDEN_FOLDER "/recorded-counters.json");
    const MeasurementData expected{
        {"C1",
         {{"Cell=1", {{"b", std::int64_t{INT64_MIN}}, {"a", 2.0}}},
          {"Cell=2", {{"c", std::vector<std::int64_t>{1, 2, 3}, true}, {"a", Nil{}}}}}},
        {std::nullopt, {{"", {{"d", std::vector<double>{0.5, 1}}}}}}};
    const auto job = counters.startJob("J1", {"any"});
    job->begin();
    EXPECT_EQ(job->cut(Coverage::Whole), expected);
    EXPECT_EQ(job->cut(Coverage::Partial), expected);
    EXPECT_EQ(counters.startJob("J2", {"C1"})->cut(Coverage::Whole), MeasurementData{});
}

TEST(RecordedCounters, refuseUnusableFilesNamingLineOrPlace) {
    const Poco::TemporaryFile file;
    const std::string object =
        R"({"jobs": {"J1": {"classes": [{"objects": [{"ldn": "", "values": []}, {"ldn": "", "values": [{)";
    for (const auto& row : VorTest::goldenTable("counter-faults.txt")) {
        const bool isFile = row[0] == "file";
        const std::string place = isFile ? "" : ": jobs/J1/classes/0/objects/1/values/0";
        VorTest::writeFile(file.path(),
                           isFile ? VorTest::withLineFeeds(row[1]) : object + row[1] + "}]}]}]}}}");
        EXPECT_THAT([&] { RecordedCounters{file.path()}; },
                    testing::ThrowsMessage<InputError>(testing::HasSubstr(place + row[2])))
            << row[1];
    }
    for (const char* const path : {"/nowhere/at/all", "/"})
        EXPECT_THROW(RecordedCounters{path}, InputError) << path;
}

}  // namespace VorNode
