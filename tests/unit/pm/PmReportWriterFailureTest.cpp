#include <Poco/StringTokenizer.h>
#include <unistd.h>

#include "LoggingWrapper.h"
#include "PmReportWriter.h"
#include "ReportTest.h"

namespace VorTest {

using testing::StartsWith;

/// What a stream holds back before it writes.
constexpr std::size_t streamBuffer = 4096, unlimited = std::string::npos;
const std::string refused = "Error writing to file, errcode-1", unknown = "3 writeValue Unknown value type 9";
const std::string interrupted = "3 write Interrupted while trying to write to file with id 1";
const std::string rewound = "4 finalizeReport Found file in broken state, rewinding.";

const VorOamSpiPmAggregatedValue_2 values[] = {
    {"a", {.floatValue = 0.125}, VorOamSpiPmValueType_2::Float, 0, 1},
    {"b", {}, static_cast<VorOamSpiPmValueType_2>(9), 0, 0},
    {"c", {}, VorOamSpiPmValueType_2::Nil, 0, 0}};
const VorOamSpiPmMeasObj_2 objects[] = {{"Cell=1", values, 1}, {"Cell=1", values, 3}, {"Cell=1", nullptr, 0}};
const VorOamSpiPmMeasObjClass_2 classes[] = {{"C", objects, 1}, {"C", objects + 1, 1}, {"C", objects + 2, 1}};
/// A GP, one that logs between its values, and one without values.
const VorOamSpiPmGpData_2 plain{classes, 1}, logging{classes + 1, 1}, bare{classes + 2, 1};

struct PmReportWriterFailureTest : StorageTest {
    PmReportWriterFailureTest() {
        root.createReportFolders();
        Vor::LoggingWrapper::instance().setLevel(Vor::LoggingWrapper::defaultLevel);
        for (std::size_t id = 0; id < 5; ++id) {
            gps.push_back(makeGp(id, id < 3 ? &plain : &bare));
            const auto writer = open();
            EXPECT_TRUE(writer->writeGpData(*gps[id]) && writer->finalizeReport());
            const std::string report = readFile(file);
            footer = report.substr(report.find("\t</measData>"));
            header = report.substr(0, report.find("\t\t<measInfo"));
            blocks.push_back(report.substr(header.size(), report.size() - header.size() - footer.size()));
        }
    }

    /// Opens the report of an element whose label is so long.
    static std::unique_ptr<PmReportWriter> open(std::size_t label = 1) {
        auto writer = std::make_unique<PmReportWriter>("", NO_COMPRESSION, beginTime, endTime);
        writer->setUtcFormat(true);
        writer->setMeId("ME1");
        writer->setMeUserLabel(std::string(label, 'x'));
        writer->openFile();
        return writer;
    }

    /// Its header and first GPs, without those that do not fit into `room` bytes.
    std::string start(std::size_t label, std::size_t count, std::size_t room = unlimited) const {
        std::string text = header;
        text.insert(text.find("\"x\"") + 1, label - 1, 'x');
        for (std::size_t gp = 0; gp < count && text.size() + blocks[gp].size() <= room; ++gp)
            text += blocks[gp];
        return text;
    }

    /// A report is complete when it has a GP and there is room for the footer, too.
    void finalize(PmReportWriter& writer, const std::string& text, std::size_t room = unlimited) {
        const bool complete =
            text.find("<measInfo") != std::string::npos && text.size() + footer.size() <= room;
        ASSERT_EQ(writer.finalizeReport(), complete) << text << room;
        ASSERT_TRUE(!complete || readFile(file) == text + footer) << text << room;
    }

    /// Writes the first three GPs within `room` bytes and another one, or none, with `roomThen`.
    std::size_t writeWithin(std::size_t room, std::size_t label, std::size_t roomThen) {
        const auto writer = open(label);
        std::size_t written = 0, lost = 0;
        log.onLine = [&](const LogLine& line) {
            lost += line.text.ends_with(lostOf) ? std::stoul(line.text) : 0;
        };
        limitFileSize(room);
        while (written < 3 && writer->writeGpData(*gps[written]))
            ++written;
        if (written < 3) {
            const std::string failure = "3 write IO failure writing gp with id " + std::to_string(written);
            const Texts told = messages();
            EXPECT_EQ(told.front(), "3 writeToFile " + refused);
            EXPECT_THAT(told.back(), StartsWith(failure + ", reason: " + refused));
        }
        std::string held = start(label, written, written < 3 ? room : unlimited);
        const std::size_t kept = gpsIn(held);
        limitFileSize(roomThen);
        if (roomThen == unlimited) {
            EXPECT_TRUE(writer->writeGpData(*gps[3]));
            held += blocks[3];
        }
        finalize(*writer, held, roomThen);
        EXPECT_TRUE(roomThen != unlimited || messages().empty());
        const bool isPublished = held.size() + footer.size() <= roomThen;
        EXPECT_EQ(lost, written - (isPublished ? kept : 0)) << "a complete GP that no line tells of";
        limitFileSize();
        messages();
        return written;
    }

    static std::size_t gpsIn(const std::string& text) {
        return Poco::StringTokenizer(text, "\t").count("<measInfo measInfoId=\"C\">\n");
    }

    const std::string file = temporaryFolder + "/A20170305.1300-1315_ME1.xml";
    const std::string lostOf = " complete GPs of " + file + " are lost with the failed write";
    std::vector<Poco::AutoPtr<PmGpData>> gps;
    std::vector<std::string> blocks;
    std::string header, footer;
};

// The header's length moves each byte of the report in turn to where the stream first, or secondly, writes.
TEST_F(PmReportWriterFailureTest, KeepsTheGpsThatTheFileHoldsWhicheverByteIsRefused) {
    std::vector<int> endings(4);
    for (std::size_t byte = start(1, 3).size() + footer.size(); byte > 0 && !HasFailure(); --byte)
        for (const std::size_t end : {streamBuffer, 2 * streamBuffer})
            for (const std::size_t room : {end - 1, (end - byte) * 7 % (end + 1)})
                for (const std::size_t roomThen : {unlimited, room})
                    ++endings[writeWithin(room, end - byte, roomThen)];
    EXPECT_THAT(endings, testing::Each(testing::Gt(0)));
}

TEST_F(PmReportWriterFailureTest, LeavesOutAnInterruptedGpAndWhatTheFileDoesNotHold) {
    for (std::size_t room = 0; room < start(1, 3).size(); ++room) {
        const auto writer = open();
        log.onLine = [&](const LogLine& line) {
            line.operation == "writeValue" ? writer->interrupt() : void();
        };
        ASSERT_TRUE(writer->writeGpData(*gps[0]));
        ASSERT_FALSE(writer->writeGpData(*makeGp(1, &logging)));
        limitFileSize(room);
        ASSERT_TRUE(writer->writeGpData(*gps[3]));
        limitFileSize();
        ASSERT_FALSE(writer->writeGpData(*gps[1]));
        ASSERT_TRUE(writer->writeGpData(*gps[4]));
        finalize(*writer, start(1, 1, room) + blocks[3] + blocks[4]);
        Texts expected{unknown, interrupted, interrupted};
        if (room < start(1, 1).size())
            expected.insert(expected.begin() + 2, {"3 writeToFile " + refused, "4 writeToFile 1" + lostOf});
        ASSERT_EQ(messages(), expected) << room;
    }
}

TEST_F(PmReportWriterFailureTest, TellsWhyThereIsNoReport) {
    const auto broken = open();
    EXPECT_FALSE(broken->writeGpData(*makeGp(7, nullptr)));
    broken->interrupt();
    EXPECT_FALSE(broken->writeGpData(*gps[1]) || broken->finalizeReport() || broken->finalizeReport());
    EXPECT_THAT(messages(),
                ElementsAre("3 write Caught unknown exception while trying to write file with id 7",
                            interrupted, rewound));
    const auto full = open();
    EXPECT_TRUE(full->writeGpData(*gps[0]));
    EXPECT_FALSE(open()->writeGpData(*gps[1])) << "it has the file";
    EXPECT_EQ(messages().front(),
              "3 openFile Error opening file " + file + " for writing: Resource temporarily unavailable");
    limitFileSize(start(1, 1).size() + footer.size() - 1);
    finalize(*full, start(1, 1), start(1, 1).size() + footer.size() - 1);
    limitFileSize();
    EXPECT_THAT(messages(),
                ElementsAre("3 writeToFile " + refused, "4 writeToFile 1" + lostOf,
                            StartsWith("3 finalizeReport IO failure writing gp, reason: " + refused)));
    // A pipe in the file's place has no positions.
    const int descriptor = ::dup(STDIN_FILENO);
    ::close(descriptor);
    const auto lost = open();
    log.onLine = [descriptor](const LogLine& line) {
        int ends[2];
        if (line.operation == "writeValue" && ::pipe(ends) == 0)
            ::dup2(ends[1], descriptor);
    };
    EXPECT_FALSE(lost->writeGpData(*makeGp(1, &logging)) || lost->finalizeReport());
    EXPECT_THAT(messages(),
                ElementsAre(unknown, "3 writeMeasData Unable to get the current file position", rewound,
                            "3 finalizeReport Error truncating file " + file + ": Illegal seek"));
}

}  // namespace VorTest
