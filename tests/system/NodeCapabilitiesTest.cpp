// What the component announces at start, and what that switches on.
#include <filesystem>
#include <map>
#include <regex>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Golden.h"
#include "ReportCheck.h"
#include "TestNode.h"

namespace {

using VorTest::at;
using VorTest::readFile;
using VorTest::TestNode;
using VorTest::WallClock;
using VorTest::writeFile;

const std::int64_t shortlyBeforeTheMinute = at("2026-03-05T10:00:59+01:00") + 800'000'000;
constexpr char counters[] =
    R"({"jobs": {"J1": {"classes": [{"name": "C1", "objects": [{"ldn": "Cell=1", "values": [{"type": "a", "int": 5}]}]}]}}})";

/// Jobs in a group that asks for compression, reports in UTC.
void useAllFeatures(const TestNode& node) {
    writeFile(node.configurationFile(),
              "<C><VorPmComp><produceRopFilesInUtcFormat>true</produceRopFilesInUtcFormat>"
              "<maxNoOfPmFiles>7</maxNoOfPmFiles></VorPmComp></C>");
    TestNode::edit(node.modelFile(), "<Attribute name=\"jobState\">",
                   "<Attribute name=\"jobGroup\">G1</Attribute><Attribute name=\"compressionType\">0"
                   "</Attribute><Attribute name=\"jobState\">");
}

/// The attributes that the component wrote, or tried to, in this order.
std::string writtenAttributes(const std::string& log) {
    const std::regex write("setSeqAttr<> dName :\\S+ attrName :(\\w+)");
    std::string names;
    for (std::sregex_iterator found(log.begin(), log.end(), write); found != std::sregex_iterator();
         ++found) {
        names += (names.empty() ? "" : " ") + found->str(1);
    }
    return names;
}

TEST(NodeCapabilities, SwitchOnGroupsCompressionAndUtc) {
    const WallClock clock(shortlyBeforeTheMinute);
    TestNode node;
    useAllFeatures(node);
    node.start(counters);
    ASSERT_TRUE(node.gps.waitForReleases(2));
    for (const auto& [attribute, value] :
         std::map<std::string, std::string>{{"maxNoOfPmFiles", "7"},
                                            {"fileRPSupported", "false"},
                                            {"jobGroupingSupport", "true"},
                                            {"supportedRopPeriods", "3, 5"},
                                            {"supportedCompressionTypes", "0"},
                                            {"producesUtcRopFiles", "true"},
                                            {"supportedMeasJobGps", "5, 3, 2"},
                                            {"unknown", "result -2"}}) {
        EXPECT_EQ(node.read(attribute), value) << attribute;
    }
    node.stop();
    const std::string name = "A20260305.0900-0901_ME1_G1.xml.gz";
    ASSERT_EQ(node.reports(), std::vector{name});
    const std::string report = VorTest::readReport(node.root().reportFolder() / name);
    EXPECT_EQ(VorTest::faultIn(report), "");
    EXPECT_NE(report.find("endTime=\"2026-03-05T09:01:00\"/>"), std::string::npos);
}

TEST(NodeCapabilities, AreAnnouncedInOrderUntilOneFails) {
    for (const auto& row : VorTest::goldenTable("capabilities.txt")) {
        const WallClock clock(shortlyBeforeTheMinute);
        TestNode node;
        useAllFeatures(node);
        TestNode::edit(node.modelFile(), "<Attribute name=\"" + row[0] + "\" type=[^>]*>",
                       row[1] == "lacks" ? "" : "<Attribute name=\"" + row[0] + "\" type=\"struct\"/>");
        // Its value would not fit another definition.
        TestNode::edit(node.modelFile(), "<Attribute name=\"fileGroup\"><Value>.*", "");
        if (row[4] != "none") {
            node.start(counters);
            EXPECT_TRUE(node.gps.waitForReleases(2));
            node.stop();
            EXPECT_EQ(node.reports(), std::vector{row[4]}) << row[0];
        } else {
            EXPECT_THROW(node.start(counters), std::runtime_error);
            node.stop();
            EXPECT_FALSE(std::filesystem::exists(node.root().reportFolder()));
        }
        EXPECT_NE(node.log().find(row[2] + "\n"), std::string::npos) << row[2];
        EXPECT_EQ(writtenAttributes(node.log()), row[3]) << row[0] << ' ' << row[1];
    }
}

TEST(NodeCapabilities, TellWhereTheReportsAre) {
    const std::string present = "<fileManagement>present</fileManagement>",
                      name = "PerformanceManagementReportFiles";
    for (const bool hasFileSystem : {true, false}) {
        for (const std::string& settings : {std::string(), present}) {
            const WallClock clock(shortlyBeforeTheMinute);
            TestNode node(settings);
            if (!hasFileSystem) {
                TestNode::edit(node.modelFile(), "<Object dn=\"[^\"]*LogicalFs=8\"/>", "");
            }
            node.start(counters);
            const bool isRelative = hasFileSystem && settings == present;
            EXPECT_EQ(node.read("fileLocation"),
                      isRelative ? "/" + name : (node.root().internalRoot() / name).string());
            EXPECT_EQ(node.read("fileGroup"),
                      isRelative ? "ManagedElement=1,SystemFunctions=1,FileM=7,LogicalFs=8,FileGroup=" + name
                                 : "no value");
            EXPECT_TRUE(node.gps.waitForReleases(2));
            node.stop();
            EXPECT_EQ(node.log().find("4 isFileMPresentInTarn: ") != std::string::npos,
                      !hasFileSystem && settings == present);
        }
    }
}

}  // namespace
