// The whole road: a node in this process, the real library, a moved wall clock.
#include <cstdlib>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Golden.h"
#include "ReportCheck.h"
#include "TestNode.h"
#include "counters/KernelCounters.h"

namespace {

using VorTest::at;
using VorTest::readReport;
using VorTest::TemporaryRoot;
using VorTest::TestNode;
using VorTest::WallClock;

constexpr std::int64_t second = 1'000'000'000;

constexpr char exampleCounters[] = R"({"jobs": {"%s": {"classes": [{"name": "C1", "objects": [
    {"ldn": "Cell=1", "values": [{"type": "b", "int": 5}, {"type": "a", "float": 1.5}]},
    {"ldn": "Cell=2", "values": [{"type": "c", "ints": [1, 2, 3], "suspect": true}, {"type": "a", "nil": true}]}
]}]}}})";

std::string countersOf(const std::string& job) {
    return std::regex_replace(exampleCounters, std::regex("%s"), job);
}

TEST(NodeLife, WritesTheKnownReportByteForByte) {
    const WallClock clock(at("2017-03-05T14:14:59+01:00"));
    TestNode node;
    node.runJobs({{"J1", 5}});
    node.start(countersOf("J1"));
    ASSERT_TRUE(node.gps.waitForReleases(1));
    node.stop();
    const std::string name = "A20170305.1400+0100-1415+0100_ME1.xml";
    ASSERT_EQ(node.reports(), std::vector{name});
    // The element's software version is always number, blank, revision.
    EXPECT_EQ(
        std::regex_replace(readReport(node.root().reportFolder() / name), std::regex("CXP1 R1A"), "R1A"),
        VorTest::golden("report-local.xml"));
}

TEST(NodeLife, EachPhaseMakesItsOwnReports) {
    const WallClock clock(at("2026-03-05T10:00:59+01:00"));
    TestNode node;
    node.start(countersOf("J1"));
    ASSERT_TRUE(node.waitForReports(1)) << "published by the timer";
    WallClock::set(at("2026-03-05T10:01:30+01:00"));
    WallClock::set(at("2026-03-05T10:01:59+01:00"));
    ASSERT_TRUE(node.waitForReports(2));
    node.stop();
    EXPECT_EQ(node.reports(), (std::vector<std::string>{"A20260305.1000+0100-1001+0100_ME1.xml",
                                                        "A20260305.1001+0100-1002+0100_ME1.xml"}));
    EXPECT_EQ(VorTest::checkReports(node.root().reportFolder()), 2);
    // Both jobs of the minute are in one report: their period and group are the same.
    const std::string report = readReport(node.root().reportFolder() / node.reports().front());
    EXPECT_NE(report.find("<job jobId=\"J1\"/>"), std::string::npos);
    EXPECT_TRUE(TemporaryRoot::filesIn(node.root().temporaryFolder()).empty());
}

TEST(NodeLife, VersionOneLeavesOutWhatItCannotCarry) {
    const WallClock clock(at("2026-03-05T10:00:59+01:00"));
    TestNode node("<pmServiceVersions>1</pmServiceVersions>");
    node.start(countersOf("J1"));
    ASSERT_TRUE(node.gps.waitForReleases(2));
    node.stop();
    ASSERT_EQ(VorTest::checkReports(node.root().reportFolder()), 1);
    const std::string report = readReport(node.root().reportFolder() / node.reports().front());
    EXPECT_NE(report.find("<r p=\"2\">1.5</r>"), std::string::npos);
    EXPECT_EQ(report.find("1,2,3"), std::string::npos);
    EXPECT_EQ(report.find("NIL"), std::string::npos);
}

TEST(NodeLife, MeasuresThePreparedKernel) {
    const WallClock clock(at("2026-03-05T10:00:30+05:30"));
    TestNode node;
    ::setenv("TZ", "Asia/Kolkata", 1);
    const std::filesystem::path proc = node.root().path() / "proc";
    std::filesystem::create_directories(proc);
    VorTest::writeFile(proc / "meminfo", "MemTotal: 1000 kB\nMemFree: 400 kB\nMemAvailable: 500 kB\n");
    VorTest::writeFile(proc / "loadavg", "0.25 1.5 2 3/128 4711\n");
    node.start(std::make_unique<VorNode::KernelCounters>(proc, node.root().path() / "sys"));
    VorTest::writeFile(proc / "loadavg", "0.5 1.5 2 4/129 4712\n");
    WallClock::shift(29 * second);
    // The clock was set while the period ran, so its values are suspect, like those of a period begun late.
    ASSERT_TRUE(node.gps.waitForReleases(2));
    node.stop();
    ASSERT_EQ(node.reports(), std::vector<std::string>{"A20260305.1000+0530-1001+0530_ME1.xml"});
    const std::string report = readReport(node.root().reportFolder() / node.reports().front());
    EXPECT_EQ(VorTest::faultIn(report), "");
    EXPECT_NE(report.find("endTime=\"2026-03-05T10:01:00+05:30\""), std::string::npos);
    for (const char* value : {">1000</r>", ">0.5</r>", ">129</r>", ">NIL</r>", "<suspect>true</suspect>"}) {
        EXPECT_NE(report.find(value), std::string::npos) << value;
    }
}

// A second node in the process loads the library anew and finds its storage anew.
TEST(NodeLife, NodesFollowEachOther) {
    for (int round = 0; round < 2; ++round) {
        const WallClock clock(at("2026-03-05T10:00:59+01:00"));
        TestNode node;
        node.start(countersOf("J2"));
        ASSERT_TRUE(node.gps.waitForReleases(2));
        node.stop();
        EXPECT_EQ(VorTest::checkReports(node.root().reportFolder()), 1);
    }
}

}  // namespace
