// What the component announces at start, and what that switches on.
#include <cstdlib>
#include <regex>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "MoAccessor.h"
#include "ReportCheck.h"
#include "TestNode.h"

namespace {

using VorTest::at;
using VorTest::readFile;
using VorTest::TemporaryRoot;
using VorTest::TestNode;
using VorTest::WallClock;
using VorTest::writeFile;

constexpr char capabilitiesDn[] = "ManagedElement=1,SystemFunctions=1,Pm=1,PmMeasurementCapabilities=1";
constexpr char counters[] =
    R"({"jobs": {"J1": {"classes": [{"name": "C1", "objects": [{"ldn": "Cell=1", "values": [{"type": "a", "int": 5}]}]}]}}})";

class NodeCapabilities : public testing::Test {
  protected:
    void SetUp() override { ::setenv("TZ", "CET-1", 1); }
};

TEST_F(NodeCapabilities, SwitchOnGroupsCompressionAndUtc) {
    const WallClock clock(at("2026-03-05T10:00:59+01:00"));
    TestNode node;
    writeFile(node.configurationFile(),
              "<C><VorPmComp><produceRopFilesInUtcFormat>true</produceRopFilesInUtcFormat>"
              "<maxNoOfPmFiles>7</maxNoOfPmFiles></VorPmComp></C>");
    writeFile(
        node.modelFile(),
        std::regex_replace(readFile(node.modelFile()), std::regex("<Attribute name=\"jobState\">"),
                           "<Attribute name=\"jobGroup\">G1</Attribute><Attribute name=\"compressionType\">0"
                           "</Attribute><Attribute name=\"jobState\">"));
    node.start(counters);
    ASSERT_TRUE(node.gps.waitForReleases(2));
    {
        Vor::MoAccessor accessor(1, 60);
        EXPECT_EQ(accessor.getAttr<std::string>(capabilitiesDn, "fileLocation"),
                  (node.root().internalRoot() / "PerformanceManagementReportFiles").string());
        Vor::MoAccessor::MoAttributeValueResult max;
        accessor.getAttrContainer(capabilitiesDn, "maxNoOfPmFiles", max);
        EXPECT_EQ(max.container->values[0].number, 7);
    }
    node.stop();
    const std::string name = "A20260305.0900-0901_ME1_G1.xml.gz";
    ASSERT_EQ(TemporaryRoot::filesIn(node.root().reportFolder()), std::vector{name});
    const std::string report = VorTest::readReport(node.root().reportFolder() / name);
    EXPECT_EQ(VorTest::faultIn(report), "");
    EXPECT_NE(report.find("endTime=\"2026-03-05T09:01:00\"/>"), std::string::npos);
}

TEST_F(NodeCapabilities, StayOffWhereTheModelLacksThem) {
    struct Row {
        const char* attribute;
        const char* line;
        bool starts;
    };
    const Row rows[] = {
        {"maxNoOfPmFiles", "3 start: Error setting maxNoOfPmFiles attribute. PM will fail to start.", false},
        {"fileRPSupported",
         "6 start: The fileRPSupported attribute does not exist. Assuming PM 1.2 functionality.", true},
        {"jobGroupingSupport",
         "6 start: The PmCapabilities::jobGroupingSupport attribute does not exist. JobGrouping will be "
         "disabled",
         true},
        {"supportedRopPeriods",
         "6 start: The PmCapabilities::supportedRopPeriods attribute does not exist. Supported ROP Periods "
         "will "
         "not be visible over the NBI",
         true},
        {"supportedCompressionTypes",
         "6 start: The attribute 'supportedCompressionTypes' does not exist. PM ROP file compression will be "
         "disabled.",
         true},
        {"producesUtcRopFiles",
         "6 start: The attribute 'producesUtcRopFiles' does not exist. PM ROP files will be generated in "
         "LocalTime format only.",
         true},
        {"fileLocation", "4 start: initializeReportPathForNBI failed to set either fileGroup or fileLocation",
         true},
    };
    for (const Row& row : rows) {
        const WallClock clock(at("2026-03-05T10:00:59+01:00"));
        TestNode node;
        const std::regex definition("<Attribute name=\"" + std::string(row.attribute) + "\" type=[^>]*>");
        writeFile(node.modelFile(), std::regex_replace(readFile(node.modelFile()), definition, ""));
        if (row.starts) {
            node.start(counters);
            EXPECT_TRUE(node.gps.waitForReleases(2));
        } else {
            EXPECT_THROW(node.start(counters), std::runtime_error);
        }
        node.stop();
        EXPECT_NE(node.log().find(row.line), std::string::npos) << row.line;
    }
}

}  // namespace
