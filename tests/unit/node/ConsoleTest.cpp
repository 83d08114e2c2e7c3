#include <cstdint>
#include <filesystem>
#include <optional>
#include <regex>
#include <string>
#include <vector>

#include <Poco/Event.h>
#include <Poco/Pipe.h>
#include <Poco/PipeStream.h>
#include <fcntl.h>
#include <gtest/gtest.h>

#include "TemporaryRoot.h"
#include "app/Console.h"
#include "app/Notice.h"
#include "app/ReportFile.h"
#include "app/ReportWatcher.h"
#include "app/RunStatus.h"

namespace VorNode {
namespace {

namespace fs = std::filesystem;

/// What a console wrote to a pipe, line by line; read while or after it is written.
class Reader {
  public:
    explicit Reader(Poco::Pipe& pipe) : _stream(pipe) {}
    std::string next() {
        std::string line;
        std::getline(_stream, line);
        return line;
    }

  private:
    Poco::PipeInputStream _stream;
};

std::size_t occurrences(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t found = text.find(part); found != std::string::npos; found = text.find(part, found + 1))
        ++count;
    return count;
}

GpInfo gpThatEndedAt(std::uint64_t id, int second) {
    return {id, "J1", Poco::Timestamp(Poco::Timestamp::TimeVal{second} * 1'000'000)};
}

}  // namespace

TEST(Console, CountsTheLinesThatNobodyReadInTimeWhereTheyAreMissing) {
    Poco::Pipe pipe;
    Console console(pipe.writeHandle(), pipe.writeHandle(), Console::Kind::Plain);
    const std::string filling(1000, 'x');
    constexpr int lines = 5000;
    for (int line = 0; line < lines; ++line)
        console.writeError(filling);
    Reader reader(pipe);
    const std::string notice = "vor-node: lines that could not be written in time are missing here: ";
    int read = 0, missing = 0;
    while (read + missing < lines) {
        const std::string line = reader.next();
        if (line.starts_with(notice))
            missing += std::stoi(line.substr(notice.size()));
        else
            ++read;
    }
    EXPECT_EQ(read + missing, lines);
    EXPECT_GT(missing, 0);
    console.writeError("the next");
    EXPECT_EQ(reader.next(), "the next");
}

TEST(Console, EscapesWhatATerminalWouldObey) {
    Poco::Pipe pipe;
    Console console(pipe.writeHandle(), pipe.writeHandle(), Console::Kind::Plain);
    console.writeError(
        "a\x1b[2J\nb\xc2\x9b"
        "2J \xc3\xbc");
    EXPECT_EQ(Reader(pipe).next(),
              "a\\x1B[2J\\nb\\xC2\\x9B"
              "2J \xc3\xbc");
}

TEST(RunStatus, CountsAllPeriodsOfAMinuteAsOnePhase) {
    const VorTest::TemporaryRoot root;
    const fs::path lines = root.path() / "lines";
    {
        const int file = ::open(lines.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
        Console console(file, file, Console::Kind::Plain);
        Notice news;
        RunStatus status(console, news);
        status.gpFetched(gpThatEndedAt(1, 60));
        status.gpFetched(gpThatEndedAt(2, 70));
        status.gpFetched(gpThatEndedAt(3, 110));
        status.gpFetched(gpThatEndedAt(4, 120));
    }
    const std::string written = VorTest::readFile(lines);
    EXPECT_EQ(occurrences(written, "collection phase opened by"), 2U) << written;
    EXPECT_NE(written.find("collection phase ended: 3 GPs fetched"), std::string::npos) << written;
    const std::regex stamped(
        "\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}[+-]\\d\\d:\\d\\d collection");
    EXPECT_TRUE(std::regex_search(written, stamped)) << written;
}

namespace {

/// Moves files into the report folder, as the component does, and notes what the watcher tells.
struct ReportWatcherTest : testing::Test {
    ReportWatcherTest() {
        root.createReportFolders();
        watcher.emplace(
            root.reportFolder(),
            [this](const fs::path& path) {
                names.push_back(path.filename());
                told.set();
            },
            [](const std::string& reason) { ADD_FAILURE() << reason; });
    }
    void publish(const std::string& name) const {
        VorTest::writeFile(root.temporaryFolder() / name, "");
        fs::rename(root.temporaryFolder() / name, root.reportFolder() / name);
    }

    const std::string report = "A20260305.1414+0100-1415+0100_ME1.xml";
    VorTest::TemporaryRoot root;
    std::vector<std::string> names;
    Poco::Event told;
    std::optional<ReportWatcher> watcher;
};

}  // namespace

TEST_F(ReportWatcherTest, TellsOfReportsOnly) {
    for (const char* name : {"foo.txt", "A20260305.1414+0100-1415+0100.xml", "A20260305.1414-14_ME1.xml"})
        publish(name);
    fs::create_symlink("elsewhere", root.temporaryFolder() / "link");
    fs::rename(root.temporaryFolder() / "link", root.reportFolder() / report);
    publish("A20260305.1314-1315_ME1.xml.gz");
    // What has appeared is told of before the watcher ends.
    watcher.reset();
    EXPECT_EQ(names, std::vector<std::string>{"A20260305.1314-1315_ME1.xml.gz"});
}

TEST_F(ReportWatcherTest, WatchesAFolderThatIsMadeAgain) {
    fs::rename(root.reportFolder(), root.path() / "away");
    root.createReportFolders();
    // The watcher needs a moment to see that the folder is there again.
    bool isTold = false;
    for (int attempt = 0; attempt < 500 && !isTold; ++attempt) {
        publish(report);
        isTold = told.tryWait(20);
    }
    EXPECT_TRUE(isTold);
}

TEST(ReportFile, IsReadToALimit) {
    const VorTest::TemporaryRoot root;
    const fs::path file = root.path() / "A20260305.1314-1315_ME1.xml";
    VorTest::writeFile(file, "<r p=\"1\">");
    fs::resize_file(file, 65 << 20);
    const ReportFacts facts = readReportFacts(file);
    EXPECT_EQ(facts.values, 1U);
    EXPECT_FALSE(facts.isComplete);
}

}  // namespace VorNode
