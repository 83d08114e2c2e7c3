#include <Poco/TemporaryFile.h>
#include <gtest/gtest.h>

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
    const std::pair<std::string, std::string> files[]{
        {"", ": cannot be read, or is empty; name a readable JSON file"},
        {"{\n\"jobs\"\n5}", ":3: is not JSON: syntax error"},
        {"{\n\"a\nb\": 5}", ":2: is not JSON: syntax error"},
        {"[1e999]", ": is not usable JSON: number overflow"},
        {"[]", ": the document is unusable; write an object"},
        {"{}", ": the document has no \"jobs\"; add it"},
        {R"({"jobs": {}, "job\u0000": 1})", R"(unknown key "job\u0000"; write only "jobs")"},
        {R"({"jobs": {"J\u00001": {}}})", R"(: jobs has the key "J\u00001" with a NUL)"},
        {R"({"jobs": {"J1": {"classes": {}}}})", ": jobs/J1/classes is unusable; write an array"},
        {R"({"jobs": {"J1": {"classes": [{"name": "a\u0000b", "objects": []}]}}})", "/0/name holds a NUL"},
        {R"({"jobs": {"J1": {"classes": [{"objects": [{"values": []}]}]}}})", "/objects/0 has no \"ldn\""},
        {R"({"jobs": {"J1": {"classes": [{"objects": [{"ldn": 1, "values": []}]}]}}})",
         "/ldn is unusable; write a text"},
    };
    const std::pair<std::string, std::string> values[]{
        {R"("int": 5)", " has no \"type\"; add it"},
        {R"("type": "a")", " has 0 values; write exactly one of"},
        {R"("type": "a", "int": 5, "nil": true)", " has 2 values; write exactly one of"},
        {R"("type": "a", "Int": 5)", " has the unknown key \"Int\"; write only \"type\", \"int\""},
        {R"("type": "a", "nil": false)", "/nil is false; write true"},
        {R"("type": "a", "nil": 1)", "/nil is unusable; write true or false"},
        {R"("type": "a", "int": 1, "suspect": "yes")", "/suspect is unusable; write true or false"},
        {R"("type": "a", "int": 1.0)", "/int is unusable; write an integer from"},
        {R"("type": "a", "int": 9223372036854775808)", "/int is unusable; write an integer from"},
        {R"("type": "a", "int": -9223372036854775809)", "/int is unusable; write an integer from"},
        {R"("type": "a", "ints": [1, 18446744073709551615])", "/ints/1 is unusable; write an integer from"},
        {R"("type": "a", "ints": 1)", "/ints is unusable; write an array"},
        {R"("type": "a", "float": "1")", "/float is unusable; write a number"},
        {R"("type": "a", "floats": [null])", "/floats/0 is unusable; write a number"},
    };
    for (const auto& [text, fault] : files)
        expectRefusal(text, fault);
    const std::string object =
        R"({"jobs": {"J1": {"classes": [{"objects": [{"ldn": "", "values": []}, {"ldn": "", "values": [{)";
    for (const auto& [value, fault] : values)
        expectRefusal(object + value + "}]}]}]}}}", ": jobs/J1/classes/0/objects/1/values/0" + fault);
    for (const char* const path : {"/nowhere/at/all", "/"})
        EXPECT_THROW(RecordedCounters{path}, InputError) << path;
}

}  // namespace
}  // namespace VorNode
