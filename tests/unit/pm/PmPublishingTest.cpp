#include "PmPublishing.h"
#include "ReportTest.h"

namespace VorTest {

class PmPublishingTest : public StorageTest {};

TEST_F(PmPublishingTest, movesReports) {
    expectRows(
        "publishing.txt",
        {{"plain", [&](auto& name) { return std::to_string(publishReport(temporaryFolder + name)); }},
         {"gzip", [&](auto& name) { return std::to_string(publishGzipReport(temporaryFolder + name)); }},
         {"plainHere", [](auto& name) { return std::to_string(publishReport(name)); }},
         {"gzipHere", [](auto& name) { return std::to_string(publishGzipReport(name)); }},
         {"sync", [](auto&) { return syncReportFolder(), ""; }}});
}

TEST_F(PmPublishingTest, publishesPlainWhatCannotBeCompressed) {
    root.createReportFolders();
    const std::string temporary = temporaryFolder + "/X.xml";
    std::string noise;
    for (std::uint32_t i = 1; noise.size() < 100'000; i = i * 1'664'525 + 1'013'904'223) {
        noise += std::to_string(i);
    }
    for (const std::string& text : {noise.substr(0, 300), noise}) {
        writeFile(temporary, text);
        ASSERT_TRUE(publishGzipReport(temporary));
        const std::size_t size = readFile(reportFolder + "/X.xml.gz").size();
        const std::size_t step = size < 1000 ? 1 : 997;
        for (std::size_t room = size % step; room <= size; room += step) {
            fs::remove(reportFolder + "/X.xml");
            fs::remove(reportFolder + "/X.xml.gz");
            writeFile(temporary, text);
            limitFileSize(room);
            ASSERT_EQ(publishGzipReport(temporary), room == size) << room;
            limitFileSize();
            const std::string published = reportFolder + (room == size ? "/X.xml.gz=" : "/X.xml=") + text;
            ASSERT_EQ(listing(), published + " " + temporaryFolder + "/") << room;
        }
    }
}

}  // namespace VorTest
