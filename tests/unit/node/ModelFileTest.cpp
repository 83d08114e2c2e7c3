#include <map>

#include <Poco/TemporaryFile.h>
#include <gmock/gmock.h>

#include "Findings.h"
#include "Golden.h"
#include "model/MeasurementJob.h"
#include "model/ModelFile.h"

namespace VorNode {

TEST(ModelFile, RefusesUnusableFilesNamingLineFaultAndRemedy) {
    const std::string text = VorTest::golden("model-values.xml"), classes = text.substr(0, text.find('\n'));
    const std::map<std::string, std::pair<std::string, std::string>> around{
        {"file", {"", ""}},
        {"model", {classes + "\n", "</Model>"}},
        {"dn", {"<Model><Object dn='", "'/></Model>"}},
        {"object", {classes + "<Object dn='A=1'>\n", "</Object></Model>"}},
        {"job",
         {classes + "<Object dn='ManagedElement=1,SystemFunctions=1,Pm=1,PmJob=J1'>"
                    "<Attribute name='jobState'>1</Attribute>",
          "</Object></Model>"}}};
    const Poco::TemporaryFile file;
    for (const auto& row : VorTest::goldenTable("model-faults.txt")) {
        const auto& [before, after] = around.at(row[0]);
        VorTest::writeFile(file.path(), before + VorTest::withLineFeeds(row[1]) + after);
        const std::size_t fragment = row[2].find(' ') + 1;
        const std::string place = file.path() + ":" + row[2].substr(0, fragment);
        EXPECT_THAT(
            [&] {
                Findings findings;
                readActiveJobs(*loadModel(file.path()), findings);
                findings.throwFaults();
            },
            testing::ThrowsMessage<InputError>(
                testing::AllOf(testing::StartsWith(place), testing::HasSubstr(row[2].substr(fragment)))))
            << row[1];
    }
    for (const char* unreadable : {"/dev/null/none", "/"})
        EXPECT_THROW(loadModel(unreadable), InputError) << unreadable;
}

TEST(ModelFile, ReadsValuesOfEveryTypeAndActiveJobsInCreationOrder) {
    const auto model = loadModel(VOR_GOLDEN_FOLDER "/model-values.xml");
    const std::pair<const char*, AttributeValues> expected[]{{"s", {"a <b>"}},
                                                             {"b", {true}},
                                                             {"u", {std::uint16_t{65535}}},
                                                             {"e", {std::int16_t{-32768}}},
                                                             {"r", {Reference{"A=2,B=x y"}}},
                                                             {"t", {StructValue{{"m", "1"}}}},
                                                             {"ss", {"b", "", "a"}}};
    for (const auto& [attribute, read] : expected)
        EXPECT_EQ(model->read("A=1", attribute), read) << attribute;
    EXPECT_EQ(model->read("A=2", "s"), AttributeValues{});
    std::string jobs;
    Findings findings;
    for (const MeasurementJob& job : readActiveJobs(*model, findings))
        jobs += job.id + ":" + std::to_string(job.granularityPeriod.count()) + job.classes.at(1) + " ";
    EXPECT_EQ(jobs,
              "9:86400Disk 1:10Disk 8:43200Disk 2:30Disk 7:3600Disk 3:60Disk 6:1800Disk 4:300Disk "
              "5:900Disk ");
}

}  // namespace VorNode
