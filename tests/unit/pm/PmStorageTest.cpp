#include <unistd.h>

#include "PmReportWriter.h"
#include "PmStorage.h"
#include "PmUtils.h"
#include "ReportTest.h"
#include "VorException.h"
#include "VoreaWrapper.h"

namespace VorTest {

class PmStorageTest : public StorageTest {
  protected:
    const std::string link = root.internalRoot() / "PerformanceManagementReportFiles";
    const std::string creation = "3 createFoldersForReportStorage ";
    const std::string failure = "Failed to invoke: vorea pso no-backup, retval ";
};

TEST_F(PmStorageTest, asksThePlatform) {
    expectRows("platform.txt", {{"internalRoot", [](auto&) { return getInternalRootFromVorEa(); }},
                                {"noBackup", [](auto&) { return getNoBackupFromVorEa(); }}});
}

TEST_F(PmStorageTest, readsAnswersOfAnyLength) {
    const std::string print = "head -c 3000000 /dev/zero | tr '\\0' x";
    const std::string text(3'000'000, 'x');
    root.answerWith(print + " >&2; " + print + "; " + print + " >&2; exit $1\n");
    EXPECT_EQ(VoreaWrapper().invoke({"0"}), text);
    EXPECT_THROW(VoreaWrapper().invoke({"5"}), Vor::VorException);
    EXPECT_THAT(messages(), ElementsAre("3 invoke " + text + text,
                                        "3 invoke Failed to invoke vorea Retval: 5, Result: " + text));
}

TEST_F(PmStorageTest, asksForLocationsUntilTheyAreKnown) {
    const std::string counter = root.path() / "queries";
    for (const std::string text : {"", "\\n", "/a/\\n", "/b/\\n"}) {
        root.answerWith("echo x >>" + counter + "\nprintf '" + text + "'\n");
        for (const auto& [location, name] : {std::pair(&getReportFileLocation, "ReportFiles"),
                                             {&getReportFileTempLocation, "TemporaryFiles"},
                                             {&getReportSymlinkLocation, "ReportFiles"}}) {
            if (text.size() > 2) {
                EXPECT_EQ(location(), std::string("/a/PerformanceManagement") + name);
            } else {
                EXPECT_THROW(location(), Vor::VorException);
            }
        }
    }
    EXPECT_EQ(readFile(counter).size(), 2U * 3 * 3);
}

TEST_F(PmStorageTest, createsFoldersAndTheLink) {
    const auto mode = [this](const std::string& name) {
        modifyFilePermissions(Poco::File(temporaryFolder + name), 0604);
        modifyFileOwnerAndGroup(Poco::File(temporaryFolder + name), ::getuid(), ::getgid());
        return std::to_string(fs::status(temporaryFolder + name).permissions() == fs::perms(0604));
    };
    expectRows("storage.txt",
               {{"folders", [](auto&) { return std::to_string(createFoldersForReportStorage()); }},
                {"link",
                 [this](auto&) {
                     const std::string result = std::to_string(createSymLinkForNobackup());
                     return result + (fs::is_symlink(link) ? fs::read_symlink(link).string() : "");
                 }},
                {"mode", mode}});
}

TEST_F(PmStorageTest, tellsWhichFolderCannotBeCreated) {
    log.onLine = [this](const LogLine& line) {
        if (line.text == "Creating folder for report files") {
            root.answerWith("exit 4\n");
        } else if (line.text == "Creating folder for report temp files") {
            fs::remove_all(root.noBackup());
            writeFile(root.noBackup(), "a file in the way");
        }
    };
    EXPECT_FALSE(createFoldersForReportStorage());
    EXPECT_EQ(messages().back(), creation + "Failed fetching temporary report location: " + failure + "4");
    root.answerWith("echo " + root.noBackup().string() + "\n");
    EXPECT_FALSE(createFoldersForReportStorage() || createFoldersForReportStorage());
    EXPECT_THAT(messages(), ElementsAre(creation + "Error creating directory tree: " + temporaryFolder,
                                        creation + "Error creating directory tree: " + reportFolder));
}

TEST_F(PmStorageTest, nothingIsDoneWithoutALocation) {
    root.answerWith("exit 3\n");
    PmReportWriter writer("", NO_COMPRESSION, beginTime, endTime);
    const std::string path = temporaryFolder + "/X.xml";
    expectRows("no-location.txt",
               {{"folders", [](auto&) { return std::to_string(createFoldersForReportStorage()); }},
                {"link", [](auto&) { return std::to_string(createSymLinkForNobackup()); }},
                {"plain", [&](auto&) { return std::to_string(publishReport(path)); }},
                {"gzip", [&](auto&) { return std::to_string(publishGzipReport(path)); }},
                {"keep", [](auto&) { return performHousekeeping(0), ""; }},
                {"open", [&](auto&) { return std::to_string(writer.openFile()); }}});
}

}  // namespace VorTest
