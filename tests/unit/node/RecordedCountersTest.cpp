#include <Poco/TemporaryFile.h>
#include <gtest/gtest.h>

#include "Golden.h"
#include "InputError.h"
#include "TemporaryRoot.h"
#include "counters/RecordedCounters.h"

namespace VorNode {
namespace {

RecordedCounters load(const std::string& text) {
    const Poco::TemporaryFile file;
    VorTest::writeFile(file.path(), text);
    return RecordedCounters(file.path());
}

/// Expects the refusal's message to have the fragment.
void expectRefusal(const std::string& text, const std::string& fragment) {
    try {
        load(text);
        ADD_FAILURE() << "accepted: " << text;
    } catch (const InputError& error) {
        EXPECT_NE(std::string(error.what()).find(fragment), std::string::npos) << text << "\n"
                                                                               << error.what();
    }
}

TEST(RecordedCounters, deliversTheSameDataAtEveryCutOfAJobOfTheFile) {
    auto counters = load(R"({"jobs": {"J1": {"classes": [
        {"name": "C1", "objects": [
            {"ldn": "Cell=1", "values": [{"type": "b", "int": -9223372036854775808}, {"type": "a", "float": 2}]},
            {"ldn": "Cell=2", "values": [{"type": "c", "ints": [1, 2, 3], "suspect": true},
                                         {"type": "a", "nil": true, "suspect": false}]}]},
        {"objects": [{"ldn": "", "values": [{"type": "d", "floats": [0.5, 1]}]}]}]}}})");
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
    const std::string object =
        R"({"jobs": {"J1": {"classes": [{"objects": [{"ldn": "", "values": []}, {"ldn": "", "values": [{)";
    for (const auto& row : VorTest::goldenTable("counter-faults.txt"))
        if (row[0] == "file")
            expectRefusal(VorTest::withLineFeeds(row[1]), row[2]);
        else
            expectRefusal(object + row[1] + "}]}]}]}}}", ": jobs/J1/classes/0/objects/1/values/0" + row[2]);
    for (const char* const path : {"/nowhere/at/all", "/"})
        EXPECT_THROW(RecordedCounters{path}, InputError) << path;
}

}  // namespace
}  // namespace VorNode
