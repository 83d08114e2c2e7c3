// What the component announces at start, and what that switches on.
#include <regex>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Golden.h"
#include "MoAccessor.h"
#include "ReportCheck.h"
#include "TestNode.h"

namespace {

using VorTest::at;
using VorTest::readFile;
using VorTest::TestNode;
using VorTest::WallClock;
using VorTest::writeFile;

constexpr char capabilitiesDn[] = "ManagedElement=1,SystemFunctions=1,Pm=1,PmMeasurementCapabilities=1";
constexpr char counters[] =
    R"({"jobs": {"J1": {"classes": [{"name": "C1", "objects": [{"ldn": "Cell=1", "values": [{"type": "a", "int": 5}]}]}]}}})";

TEST(NodeCapabilities, SwitchOnGroupsCompressionAndUtc) {
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
    ASSERT_EQ(node.reports(), std::vector{name});
    const std::string report = VorTest::readReport(node.root().reportFolder() / name);
    EXPECT_EQ(VorTest::faultIn(report), "");
    EXPECT_NE(report.find("endTime=\"2026-03-05T09:01:00\"/>"), std::string::npos);
}

TEST(NodeCapabilities, StayOffWhereTheModelLacksThem) {
    for (const auto& row : VorTest::goldenTable("absent-capabilities.txt")) {
        const WallClock clock(at("2026-03-05T10:00:59+01:00"));
        TestNode node;
        const std::regex definition("<Attribute name=\"" + row[0] + "\" type=[^>]*>");
        writeFile(node.modelFile(), std::regex_replace(readFile(node.modelFile()), definition, ""));
        if (row[2] == "starts") {
            node.start(counters);
            EXPECT_TRUE(node.gps.waitForReleases(2));
        } else {
            EXPECT_THROW(node.start(counters), std::runtime_error);
        }
        node.stop();
        EXPECT_NE(node.log().find(row[1]), std::string::npos) << row[1];
    }
}

}  // namespace
