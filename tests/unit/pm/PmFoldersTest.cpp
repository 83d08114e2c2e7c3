// What the component does about entries of its folders that somebody else put there.
#include <cerrno>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "PmReportWriter.h"
#include "PmUtils.h"
#include "ReportTest.h"

namespace VorTest {
namespace {

bool isLockingSupported = true;
bool isClosingRefused = false;
/// Negative when a folder is read to its end.
int readableEntries = -1;

}  // namespace
}  // namespace VorTest

/// Stands in for the system's, so that a file system can be without locks.
extern "C" int flock(int descriptor, int operation) noexcept {
    if (VorTest::isLockingSupported)
        return static_cast<int>(::syscall(SYS_flock, descriptor, operation));
    errno = ENOLCK;
    return -1;
}

/// The same for a file system that refuses what was written only when the file is closed.
extern "C" int close(int descriptor) {
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    const bool isRefused = VorTest::isClosingRefused && VorTest::fs::read_symlink(link).extension() == ".gz";
    const auto result = static_cast<int>(::syscall(SYS_close, descriptor));
    if (!isRefused)
        return result;
    errno = EDQUOT;
    return -1;
}

/// The same for a folder that cannot be read further.
extern "C" dirent* readdir(DIR* folder) {
    static const auto next = reinterpret_cast<dirent* (*)(DIR*)>(::dlsym(RTLD_NEXT, "readdir"));
    if (VorTest::readableEntries != 0) {
        VorTest::readableEntries -= VorTest::readableEntries > 0 ? 1 : 0;
        return next(folder);
    }
    errno = EIO;
    return nullptr;
}

namespace VorTest {

using PmStorage = Folders;

TEST_F(PmStorage, TellsWhichFolderItCreatesUnderTheNameOfTheOperation) {
    ASSERT_TRUE(createFoldersForReportStorage());
    Texts operations;
    for (const LogLine& line : log.lines())
        if (line.text.starts_with("Creating folder for report"))
            operations.push_back(line.operation);
    EXPECT_EQ(operations, Texts(2, "createFoldersForReportStorage"));
}

TEST_F(PmStorage, RefusesATemporaryFolderThatIsALinkToAFolder) {
    fs::create_directories(reportFolder);
    fs::create_directory_symlink(reportFolder, temporaryFolder);
    EXPECT_FALSE(createFoldersForReportStorage());
    EXPECT_EQ(messages(),
              Texts{"3 createFoldersForReportStorage Error creating directory tree: " + temporaryFolder});
}

struct PmHousekeeping : Folders {
    PmHousekeeping() { root.createReportFolders(); }
};

TEST_F(PmHousekeeping, GoesOnPastAReportThatCannotBeRemoved) {
    const std::string broken = reportFolder + "/A20160305.0000-0015_M.xml";
    fs::create_directories(broken + "/content");
    writeFile(reportFolder + "/A20170305.0000-0015_M.xml", "");
    writeFile(reportFolder + "/A20170305.0015-0030_M.xml", "");
    writeFile(temporaryFolder + "/left over", "");
    performHousekeeping(1);
    EXPECT_EQ(shortened(listing()), "R/A20160305.0000-0015_M.xml/content/ R/A20170305.0015-0030_M.xml= T/");
    EXPECT_EQ(messages(),
              Texts{"4 performHousekeeping Could not remove ROP file " + broken + ": Directory not empty"});
}

TEST_F(PmHousekeeping, RemovesNothingFromAFolderThatCannotBeReadFurther) {
    for (const char* name : {"/A20170305.0000-0015_M.xml", "/A20170305.0015-0030_M.xml"})
        writeFile(reportFolder + name, "");
    readableEntries = 3;
    performHousekeeping(0);
    readableEntries = -1;
    EXPECT_EQ(TemporaryRoot::filesIn(reportFolder).size(), 2U);
    EXPECT_EQ(messages(), Texts{"4 performHousekeeping Could not access directory " + reportFolder +
                                ", for housekeeping"});
}

TEST_F(PmHousekeeping, LeavesAloneWhatATemporaryFolderThatBecameALinkPointsAt) {
    writeFile(reportFolder + "/A20170305.0000-0015_M.xml", "");
    fs::remove(temporaryFolder);
    fs::create_directory_symlink(reportFolder, temporaryFolder);
    performHousekeeping(1);
    EXPECT_TRUE(fs::exists(reportFolder + "/A20170305.0000-0015_M.xml"));
    EXPECT_EQ(messages(), Texts{"4 performHousekeeping Could not remove temporary files in directory " +
                                temporaryFolder});
}

struct PmPublishing : Folders {
    PmPublishing() { root.createReportFolders(); }

    const std::string temporary = temporaryFolder + "/X.xml", destination = reportFolder + "/X.xml";
};

TEST_F(PmPublishing, FallsBackToThePlainReport) {
    std::string noise;
    for (std::uint32_t i = 1; noise.size() < 100'000; i = i * 1'664'525 + 1'013'904'223)
        noise += std::to_string(i);
    for (const std::string& text : {noise.substr(0, 300), noise}) {
        writeFile(temporary, text);
        ASSERT_TRUE(publishGzipReport(temporary));
        const std::size_t size = readFile(destination + ".gz").size();
        const std::size_t step = size < 1000 ? 1 : 997;
        for (std::size_t room = size % step; room <= size; room += step) {
            fs::remove(destination);
            fs::remove(destination + ".gz");
            writeFile(temporary, text);
            limitFileSize(room);
            ASSERT_EQ(publishGzipReport(temporary), room == size) << room;
            limitFileSize();
            ASSERT_EQ(shortened(listing()), (room == size ? "R/X.xml.gz=" : "R/X.xml=") + text + " T/")
                << room;
        }
    }
}

TEST_F(PmPublishing, DoesNotPublishALinkThatTookTheReportsPlace) {
    fs::create_symlink("/dev/null", temporary);
    EXPECT_FALSE(publishReport(temporary) || publishGzipReport(temporary));
    EXPECT_EQ(shortened(listing()), "R/ T/X.xml->/dev/null");
    const std::string copying = "Error copying file " + temporary + " -> " + destination;
    EXPECT_EQ(messages(),
              (Texts{"3 publishReport " + copying + ", reason Too many levels of symbolic links",
                     "3 publishGzipReport " + copying + ".gz, reason Too many levels of symbolic links"}));
}

TEST_F(PmPublishing, DoesNotWaitForAFifoThatTookTheReportsPlace) {
    ASSERT_EQ(::mkfifo(temporary.c_str(), 0600), 0);
    EXPECT_FALSE(publishReport(temporary) || publishGzipReport(temporary));
    EXPECT_EQ(TemporaryRoot::filesIn(reportFolder), Texts{});
}

TEST_F(PmPublishing, PublishesThePlainReportWhenClosingTheCompressedOneIsRefused) {
    root.createReportFolders();
    writeFile(temporaryFolder + "/X.xml", "text");
    isClosingRefused = true;
    const bool isPublishedCompressed = publishGzipReport(temporaryFolder + "/X.xml");
    isClosingRefused = false;
    EXPECT_FALSE(isPublishedCompressed);
    EXPECT_EQ(shortened(listing()), "R/X.xml=text T/");
}

TEST_F(PmPublishing, SyncsAReportFolderThatIsReachedByALink) {
    fs::rename(reportFolder, root.path() / "elsewhere");
    fs::create_directory_symlink(root.path() / "elsewhere", reportFolder);
    syncReportFolder();
    EXPECT_EQ(messages(), Texts{});
}

struct PmReportFile : Folders {
    PmReportFile() { root.createReportFolders(); }

    static std::unique_ptr<PmReportWriter> open() {
        auto writer = std::make_unique<PmReportWriter>("", NO_COMPRESSION, beginTime, endTime);
        writer->setUtcFormat(true);
        writer->setMeId("ME1");
        writer->openFile();
        return writer;
    }
    Texts refusal(const std::string& reason) const {
        return {"3 openFile Error opening file " + file + " for writing: " + reason};
    }

    const std::string file = temporaryFolder + "/A20170305.1300-1315_ME1.xml";
};

TEST_F(PmReportFile, DoesNotWaitForAFifoUnderItsName) {
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    open();
    EXPECT_EQ(messages(), refusal("No such device or address"));
    const int reader = ::open(file.c_str(), O_RDONLY | O_NONBLOCK);
    open();
    EXPECT_EQ(messages(), refusal("No such device or address"));
    ::close(reader);
}

TEST_F(PmReportFile, LeavesAFileWithAnotherNameAsItIs) {
    const fs::path victim = root.path() / "victim";
    writeFile(victim, "untouched");
    fs::create_hard_link(victim, file);
    open();
    EXPECT_EQ(messages(), refusal("Too many links"));
    EXPECT_EQ(readFile(victim), "untouched");
}

TEST_F(PmReportFile, IsWrittenWhereFilesCannotBeLocked) {
    isLockingSupported = false;
    open();
    EXPECT_EQ(messages(), Texts{});
}

}  // namespace VorTest
