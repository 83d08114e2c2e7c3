#include <Poco/TemporaryFile.h>
#include <gmock/gmock.h>

#include "Golden.h"
#include "InputError.h"
#include "counters/CollectorOrder.h"
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
        const std::string place = isFile ? "" : ":1: jobs/J1/classes/0/objects/1/values/0";
        VorTest::writeFile(file.path(),
                           isFile ? VorTest::withLineFeeds(row[1]) : object + row[1] + "}]}]}]}}}");
        EXPECT_THAT([&] { RecordedCounters{file.path()}; },
                    testing::ThrowsMessage<InputError>(testing::HasSubstr(place + row[2])))
            << row[1];
    }
    for (const char* const path : {"/nowhere/at/all", "/"})
        EXPECT_THROW(RecordedCounters{path}, InputError) << path;
}

TEST(CollectorOrder, IsKeptByClassesThatReadTheSameByPlace) {
    struct Row {
        const char* what;
        /// The types of each object.
        std::vector<std::vector<std::string>> objects;
        bool isKept;
    };
    const Row rows[]{
        {"by name, and all", {{"A", "B", "a"}, {"A", "B", "a"}}, true},
        {"an object without values", {{}, {"a", "b"}, {}}, true},
        {"a later object has another order", {{"a", "b"}, {"b", "a"}}, true},
        {"the first object has another order", {{"b", "a"}, {"a", "b"}}, false},
        {"not byte-wise", {{"a", "B"}}, false},
        {"an object lacks a type", {{"a", "b"}, {"a"}}, false},
        {"a later object has one more", {{"a"}, {"a", "b"}}, false},
        {"a type twice", {{"a", "a"}}, false},
    };
    for (const Row& row : rows) {
        MeasuredClass measured;
        for (const auto& types : row.objects) {
            MeasuredObject& object = measured.objects.emplace_back();
            for (const std::string& type : types)
                object.values.push_back({type, Nil{}});
        }
        EXPECT_EQ(readsTheSameByPlace(measured), row.isKept) << row.what;
    }
}

}  // namespace VorNode
