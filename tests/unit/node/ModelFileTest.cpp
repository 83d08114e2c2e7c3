#include <Poco/TemporaryFile.h>
#include <gtest/gtest.h>

#include "Golden.h"
#include "InputError.h"
#include "TemporaryRoot.h"
#include "model/MeasurementJob.h"
#include "model/ModelFile.h"

namespace VorNode {

namespace {

const std::string classes =
    "<Class path='A'><Attribute name='s' type='string'/><Attribute name='b' type='bool'/>"
    "<Attribute name='u' type='uint16'/><Attribute name='e' type='enum'/><Attribute name='r' type='ref'/>"
    "<Attribute name='t' type='struct'/><Attribute name='ss' type='string' seq='true'/></Class>"
    "<Class path='ManagedElement,SystemFunctions,Pm,PmJob'><Attribute name='granularityPeriod' type='enum'/>"
    "<Attribute name='jobState' type='enum'/><Attribute name='measuredClasses' type='string' "
    "seq='true'/></Class>";

std::unique_ptr<Model> load(const std::string& text) {
    const Poco::TemporaryFile file;
    VorTest::writeFile(file.path(), text);
    try {
        return loadModel(file.path());
    } catch (const InputError& error) {
        // A refusal begins with the file; here without it.
        const std::string refusal = error.what();
        throw InputError(refusal.substr(refusal.find(file.path() + ":") + file.path().size() + 1));
    }
}

/// `expected` is "line: fragment of the message".
void expectRefusal(const std::string& text, const std::string& expected) {
    try {
        readActiveJobs(*load(text));
        ADD_FAILURE() << "accepted: " << text;
    } catch (const InputError& error) {
        const std::string refusal = error.what();
        const std::size_t fragment = expected.find(' ') + 1;
        EXPECT_TRUE(refusal.starts_with(expected.substr(0, fragment))) << text << "\n" << refusal;
        EXPECT_NE(refusal.find(expected.substr(fragment)), std::string::npos) << text << "\n" << refusal;
    }
}

}  // namespace

TEST(ModelFile, RefusesUnusableFilesNamingLineFaultAndRemedy) {
    const std::map<std::string, std::string> before{{"file", ""},
                                                    {"model", "<Model>" + classes + "\n"},
                                                    {"object", "<Model>" + classes + "<Object dn='A=1'>\n"}};
    const std::map<std::string, std::string> after{
        {"file", ""}, {"model", "</Model>"}, {"object", "</Object></Model>"}};
    for (const auto& row : VorTest::goldenTable("model-faults.txt"))
        expectRefusal(before.at(row[0]) + VorTest::withLineFeeds(row[1]) + after.at(row[0]), row[2]);
    for (const char* dn : {"", "A", "A=", "=1", "A=1,", "A=1,,B=1", "A=1, B=1", "A=\"1", "A=&#127;", "A=1=1"})
        expectRefusal("<Model><Object dn='" + std::string(dn) + "'/></Model>", "1: is no dn; write a dn");
    for (const char* unreadable : {"/dev/null/none", "/"})
        EXPECT_THROW(loadModel(unreadable), InputError) << unreadable;
}

TEST(ModelFile, ReadsValuesOfEveryType) {
    const auto model = load("<Model>" + classes + R"(<Object dn='A=1'><Attribute name='s'> a &lt;b&gt;
        </Attribute><Attribute name='b'><Value>true</Value></Attribute><Attribute name='u'>65535</Attribute>
        <Attribute name='e'>-32768</Attribute><Attribute name='r'>A=2,B=x y</Attribute>
        <Attribute name='t'><Member name='m'>1</Member><Member name='n'/></Attribute>
        <Attribute name='ss'><Value>b</Value><Value/><Value>a</Value></Attribute></Object>
        <Object dn='A=2'><Attribute name='s'/></Object></Model>)");
    const std::pair<const char*, AttributeValues> expected[]{{"s", {"a <b>"}},
                                                             {"b", {true}},
                                                             {"u", {std::uint16_t{65535}}},
                                                             {"e", {std::int16_t{-32768}}},
                                                             {"r", {Reference{"A=2,B=x y"}}},
                                                             {"t", {StructValue{{"m", "1"}}}},
                                                             {"ss", {"b", "", "a"}}};
    for (const auto& [attribute, values] : expected)
        EXPECT_EQ(model->read("A=1", attribute), values) << attribute;
    EXPECT_EQ(model->read("A=2", "s"), AttributeValues{});
}

TEST(MeasurementJob, TakesUsableActiveJobsInCreationOrder) {
    const std::string active = "<Attribute name='jobState'>1</Attribute>", end = "</Attribute>";
    const std::string measured =
        "<Attribute name='measuredClasses'><Value>Load</Value><Value>Disk</Value></Attribute>";
    const std::string period = "<Attribute name='granularityPeriod'>";
    const auto modelOf = [](const std::string& jobs) { return "<Model>" + classes + jobs + "</Model>"; };
    const auto job = [](const std::string& id, const std::string& attributes) {
        return "<Object dn='ManagedElement=1,SystemFunctions=1,Pm=1,PmJob=" + id + "'>" + attributes +
               "</Object>";
    };
    std::string jobs = job("none", "") + job("stopped", "<Attribute name='jobState'>2</Attribute>");
    for (const char number : std::string("918273645"))
        jobs += job(std::string(1, number), active + measured + period + number + end);
    std::string found;
    for (const MeasurementJob& read : readActiveJobs(*load(modelOf(jobs))))
        found += read.id + ":" + std::to_string(read.granularityPeriod.count()) + read.classes.at(1) + " ";
    EXPECT_EQ(found,
              "9:86400Disk 1:10Disk 8:43200Disk 2:30Disk 7:3600Disk 3:60Disk 6:1800Disk 4:300Disk "
              "5:900Disk ");
    const std::pair<std::string, std::string> faults[]{
        {measured, "granularityPeriod has no enum value"},
        {measured + period + "0" + end, "granularityPeriod is 0"},
        {measured + period + "10" + end, "granularityPeriod is 10"},
        {period + "1" + end, "measuredClasses names no class"}};
    for (const auto& [attributes, fault] : faults)
        expectRefusal(modelOf(job("J1", active + attributes)),
                      "job ManagedElement=1,SystemFunctions=1,Pm=1,PmJob=J1: " + fault);
}

}  // namespace VorNode
