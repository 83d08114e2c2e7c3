// The utilities and the configuration, each by a table of its own.
#include <algorithm>
#include <functional>
#include <map>
#include <sstream>
#include <thread>

#include <unistd.h>

#include "PmConfigHandler.h"
#include "PmReportWriter.h"
#include "PmUtils.h"
#include "ReportTest.h"

namespace VorPm {

/// The texts of times, which a writer keeps to itself.
struct PmReportWriterTimes {
    static std::string stamp(std::uint64_t time, bool utc) {
        return PmReportWriter::formatTimeStamp(time, utc);
    }
    static std::string suffix(std::uint64_t time) { return PmReportWriter::timeZoneSuffix(time); }
};

}  // namespace VorPm

namespace VorTest {
namespace {

std::string reportName(std::uint64_t begin, std::uint64_t end, bool utc, const std::string& meId,
                       const std::string& jobGroup) {
    PmReportWriter writer(jobGroup, NO_COMPRESSION, begin, end);
    writer.setMeId(meId);
    writer.setUtcFormat(utc);
    return writer.createFileName();
}

constexpr std::uint64_t second = 1'000'000'000, quarter = 900 * second;

std::string told(const auto&... results) {
    std::ostringstream text;
    ((text << results << ' '), ...);
    return text.str().substr(0, text.str().size() - 1);
}

/// A table, by its name.
struct Subjects : Folders, testing::WithParamInterface<std::string> {
    PmConfigHandler config;
    const std::map<std::string, std::function<std::string(const Texts& words)>> operations{
        {"maximum",
         [this](auto&) {
             unsigned short maximum = 77;
             const int loaded = config.load("c.xml"), result = config.getMaxNoOfPmFiles(maximum);
             return told(loaded, result, maximum);
         }},
        {"timer",
         [this](auto&) {
             const int loaded = config.load("c.xml");
             return told(loaded, config.getPmTimerExpirationTime());
         }},
        {"utc",
         [this](auto&) {
             bool off = false, on = true;
             const int loaded = config.load("c.xml"), first = config.getBooleanValueFromCfg("utc", off),
                       last = config.getBooleanValueFromCfg("utc", on);
             return told(loaded, first, off, last, on);
         }},
        {"element",
         [this](auto&) {
             std::string value = "before";
             const int loaded = config.load("c.xml"), result = config.getElementValue("key", value);
             return told(loaded, result, value);
         }},
        {"period", [](auto& words) { return timePeriod2Str(static_cast<TimePeriod>(std::stoi(words[1]))); }},
        {"stamps",
         [](auto& words) {
             ::setenv("TZ", words[1].c_str(), 1);
             const std::uint64_t time = std::stoull(words[2]) * second + 709'551'615;
             const std::string local = PmReportWriterTimes::stamp(time, false);
             return told(local, PmReportWriterTimes::stamp(time, true), PmReportWriterTimes::suffix(time),
                         convertToUtc(local, "%Y-%m-%dT%H:%M:%S"));
         }},
        {"names",
         [](auto& words) {
             ::setenv("TZ", words[1].c_str(), 1);
             const std::uint64_t begin = std::stoull(words[2]) * second, end = begin + quarter;
             return told(reportName(begin, end, false, words[3], words[4]),
                         reportName(begin, end, true, words[3], words[4]));
         }},
        {"key",
         [](auto& words) { return isValidROPFileName(words[1]) ? generateKey(words[1]) : "no report"; }},
        {"internalRoot", [](auto&) { return getInternalRootFromVorEa(); }},
        {"noBackup", [](auto&) { return getNoBackupFromVorEa(); }},
        {"locations",
         [](auto&) {
             const std::string reports = getReportFileLocation(), temporary = getReportFileTempLocation();
             return told(reports, temporary, getReportSymlinkLocation());
         }},
        {"folders", [](auto&) { return told(createFoldersForReportStorage()); }},
        {"link",
         [](auto& words) {
             const bool result = createSymLinkForNobackup();
             return told(result) + (fs::is_symlink(words[1]) ? fs::read_symlink(words[1]).string() : "");
         }},
        {"mode",
         [](auto& words) {
             modifyFilePermissions(Poco::File(words[1]), 0604);
             modifyFileOwnerAndGroup(Poco::File(words[1]), ::getuid(), ::getgid());
             return told(fs::status(words[1]).permissions() == fs::perms(0604));
         }},
        {"open",
         [](auto& words) {
             PmReportWriter writer(words[2], NO_COMPRESSION, beginTime, endTime);
             writer.setUtcFormat(true);
             writer.setMeId(words[1]);
             return told(writer.openFile() || writer.writeGpData(*makeGp(1, nullptr)));
         }},
        {"plain", [](auto& words) { return told(publishReport(words[1])); }},
        {"gzip", [](auto& words) { return told(publishGzipReport(words[1])); }},
        {"sync", [](auto&) { return syncReportFolder(), ""; }},
        // The traces of removals.
        {"keep",
         [this](auto& words) {
             std::string traces;
             performHousekeeping(static_cast<unsigned short>(std::stoi(words[1])));
             for (const LogLine& line : log.lines())
                 traces +=
                     line.level == 8 && line.text.find("ROP file") != std::string::npos ? line.text : "";
             return traces;
         }},
    };
};

}  // namespace

// In each row a shell script prepares empty folders, an operation runs, and what it answers or throws, what
// lies in the folders then, and the messages are compared. A script called like a trace runs when that is
// written.
TEST_P(Subjects, DoWhatTheTableTells) {
    fs::current_path(root.path());
    ::setenv("R", reportFolder.c_str(), 1);
    ::setenv("T", temporaryFolder.c_str(), 1);
    log.onLine = [](const LogLine& line) {
        std::error_code none;
        const bool isScript = fs::is_regular_file(line.text, none);
        EXPECT_TRUE(!isScript || std::system(("sh '" + line.text + "'").c_str()) == 0);
    };
    for (const Texts& row : goldenTable(GetParam())) {
        EXPECT_EQ(std::system(("rm -rf no-backup internal/*; mkdir -p $R $T; " + row[0]).c_str()), 0)
            << row[0];
        messages();
        Texts outcome{row[0], row[1]};
        try {
            const std::string operation =
                Poco::replace(row[1], std::string(" T/"), " " + temporaryFolder + "/");
            const Poco::StringTokenizer words(operation, " ");
            outcome.push_back(operations.at(words[0])({words.begin(), words.end()}));
        } catch (const std::exception& fault) {
            outcome.push_back(std::string("throws ") + fault.what());
        }
        outcome.push_back(listing());
        for (const std::string& message : messages())
            outcome.push_back(message);
        std::transform(outcome.begin() + 2, outcome.end(), outcome.begin() + 2,
                       [this](const std::string& text) { return shortened(text); });
        EXPECT_EQ(outcome, row);
    }
}
INSTANTIATE_TEST_SUITE_P(PmConfigHandler, Subjects, testing::Values("settings.txt"));
INSTANTIATE_TEST_SUITE_P(PmTimeTexts, Subjects, testing::Values("times.txt"));
INSTANTIATE_TEST_SUITE_P(PmReportNames, Subjects, testing::Values("report-names.txt"));
INSTANTIATE_TEST_SUITE_P(VoreaWrapper, Subjects, testing::Values("platform.txt"));
INSTANTIATE_TEST_SUITE_P(PmStorage, Subjects, testing::Values("storage.txt"));
INSTANTIATE_TEST_SUITE_P(PmLocations, Subjects, testing::Values("locations.txt"));
INSTANTIATE_TEST_SUITE_P(PmNoLocation, Subjects, testing::Values("no-location.txt"));
INSTANTIATE_TEST_SUITE_P(PmPublishing, Subjects, testing::Values("publishing.txt"));
INSTANTIATE_TEST_SUITE_P(PmHousekeeping, Subjects, testing::Values("housekeeping.txt"));
INSTANTIATE_TEST_SUITE_P(PmReportWriterFailureTest, Subjects, testing::Values("opening.txt"));

TEST(PmConfigHandler, AnswersSeveralThreadsAtOnce) {
    const TemporaryRoot root;
    PmConfigHandler handler;
    writeFile(root.path() / "c.xml",
              "<VorPmComp><pmTimerExpirationTime>5</pmTimerExpirationTime></VorPmComp>");
    ASSERT_EQ(handler.load(root.path() / "c.xml"), 0);
    const auto read = [&handler] {
        for (int round = 0; round < 2000; ++round)
            ASSERT_EQ(handler.getPmTimerExpirationTime(), 5);
    };
    const std::jthread threads[]{std::jthread(read), std::jthread(read), std::jthread(read),
                                 std::jthread(read)};
}

TEST(PmReportNames, SortByKeyInTheOrderOfTime) {
    // Three days each: around both changes of daylight saving time, and in 2100.
    for (const std::uint64_t start : {1490400000 * second, 1509148800 * second, 4107456000 * second})
        for (const char* zone : {"CET-1", "UTC", "Asia/Kolkata", "Europe/Berlin", "America/St_Johns"})
            for (const bool utc : {false, true}) {
                ::setenv("TZ", zone, 1);
                std::string before;
                for (std::uint64_t end = start; end < start + 288 * quarter; end += quarter) {
                    const std::string name = reportName(end - quarter, end, utc, "ME1", "");
                    ASSERT_TRUE(isValidROPFileName(name)) << name;
                    if (name.substr(utc ? 15 : 20, 4) == "0000")
                        continue;
                    ASSERT_LT(before, generateKey(name)) << zone << ' ' << name;
                    before = generateKey(name);
                }
            }
}

}  // namespace VorTest
