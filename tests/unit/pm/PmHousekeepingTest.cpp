#include "PmHousekeeping.h"
#include "ReportTest.h"

namespace VorTest {

class PmHousekeepingTest : public StorageTest {
  protected:
    /// Keeps so many reports and tells the traces of removals.
    std::string keep(const std::string& maximum) {
        log.clear();
        performHousekeeping(static_cast<unsigned short>(std::stoi(maximum)));
        std::string traces;
        for (const LogLine& line : log.lines()) {
            traces += line.text.find("ROP file") != std::string::npos && line.level == 8 ? line.text : "";
        }
        return traces;
    }
};

TEST_F(PmHousekeepingTest, keepsTheNewestReportsAndEmptiesTheTemporaryFolder) {
    const auto keepWhileOneVanishes = [this](const std::string& maximum) {
        log.onLine = [this](const LogLine& line) {
            line.text.starts_with("Removing") &&
                fs::remove(reportFolder + "/A20170305.0045+0100-0100+0100_M.xml");
        };
        std::string traces = keep(maximum);
        log.onLine = nullptr;
        return traces;
    };
    expectRows("housekeeping.txt", {{"keep", [this](auto& maximum) { return keep(maximum); }},
                                    {"keepWhileOneVanishes", keepWhileOneVanishes}});
}

TEST_F(PmHousekeepingTest, countsReportsOfOneKeyOnce) {
    root.createReportFolders();
    writeFile(reportFolder + "/A20170305.0000-0015_M.xml", "");
    writeFile(reportFolder + "/A20170305.0000-0015_M.xml.gz", "");
    EXPECT_EQ(keep("1"), "");
    EXPECT_EQ(TemporaryRoot::filesIn(reportFolder).size(), 2U);
    EXPECT_EQ(keep("0"), "Removing 1 old ROP files");
    EXPECT_EQ(TemporaryRoot::filesIn(reportFolder).size(), 1U);
}

}  // namespace VorTest
