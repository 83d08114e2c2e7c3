// The whole road: a node in this process, the real library, a moved wall clock; and the program itself.
#include <cstdlib>
#include <memory>
#include <regex>
#include <set>
#include <sstream>

#include <Poco/DateTimeFormat.h>
#include <Poco/DateTimeParser.h>
#include <Poco/Environment.h>
#include <Poco/Semaphore.h>
#include <gtest/gtest.h>

#include "Golden.h"
#include "ReportCheck.h"
#include "WallClock.h"
#include "app/AttributeText.h"
#include "app/ReportWatcher.h"
#include "counters/KernelCounters.h"
#include "counters/RecordedCounters.h"
#include "framework/ComponentSettings.h"
#include "framework/Node.h"

namespace VorTest {
namespace {

namespace fs = std::filesystem;

/// Nanoseconds since the epoch of an ISO 8601 time with zone.
std::int64_t at(const std::string& iso) {
    int offset = 0;
    Poco::DateTime time = Poco::DateTimeParser::parse(Poco::DateTimeFormat::ISO8601_FRAC_FORMAT, iso, offset);
    time.makeUTC(offset);
    return time.timestamp().epochMicroseconds() * 1000;
}

int runScript(const fs::path& folder, const std::string& script) {
    return WEXITSTATUS(std::system(("cd " + folder.string() + " && " + script).c_str()));
}

struct ReleaseWatch : VorNode::PmServiceListener {
    void gpReleased(const VorNode::GpInfo& /*gp*/) override { released.set(); }
    Poco::Semaphore released{0, 100};
};

/// A whole node on a temporary root, with recorded counters or, when there is one, those of the folder
/// "proc".
struct NodeRun {
    /// The set-up is a shell script in the root, where the node's files lie.
    NodeRun(const std::string& setUp, const std::string& zone) {
        for (const std::string name : {"model.xml", "node.xml", "counters.json"})
            writeFile(root.path() / name, golden("system-" + name));
        EXPECT_EQ(runScript(root.path(), setUp), 0) << setUp;
        ::setenv("TZ", zone.c_str(), 1);
        const fs::path proc = root.path() / "proc";
        if (fs::exists(proc))
            producer = std::make_unique<VorNode::KernelCounters>(proc, root.path() / "sys");
        else
            producer = std::make_unique<VorNode::RecordedCounters>(root.path() / "counters.json");
        const VorNode::InstallPaths paths = VorNode::InstallPaths::ofThisProgram();
        const VorNode::NodeOptions options{root.path() / "node.xml",
                                           root.path() / "model.xml",
                                           root.path(),
                                           paths.library,
                                           paths.commands,
                                           8};
        node = std::make_unique<VorNode::Node>(options, *producer, watch, log);
    }

    /// Runs it from start to its end and tells all that can be seen of it.
    std::string follow(std::istream& course) {
        std::string seen;
        try {
            node->start();
            seen = "started\n" + capabilities();
            await(course);
            EXPECT_GT(node->pmService().counts().announced, 0U);
        } catch (const std::runtime_error& fault) {
            seen = std::string("refused: ") + fault.what() + "\n";
        }
        node->stop();
        EXPECT_EQ(node->pmService().counts().released, node->pmService().counts().announced);
        node.reset();
        return seen + log.str() + writtenAttributes() + reports();
    }

    /// What a client reads.
    std::string capabilities() const {
        std::string text;
        for (const char* attribute :
             {"maxNoOfPmFiles", "fileRPSupported", "jobGroupingSupport", "supportedRopPeriods",
              "supportedCompressionTypes", "producesUtcRopFiles", "supportedMeasJobGps", "unknown",
              "fileLocation", "fileGroup"}) {
            const VorNode::AttributeReading reading = node->client().read(
                "ManagedElement=1,SystemFunctions=1,Pm=1,PmMeasurementCapabilities=1", attribute);
            text += std::string(attribute) + ": " +
                    (reading.result == 0 ? VorNode::attributeText(reading.values)
                                         : "result " + std::to_string(reading.result)) +
                    "\n";
        }
        return Poco::replace(text, root.path().string(), std::string("."));
    }

    void await(std::istream& course) {
        Poco::Semaphore published(0, 100);
        const VorNode::ReportWatcher watcher(
            root.reportFolder(), [&](const auto&) { published.set(); }, [](const auto&) {});
        for (std::string step; course >> step;) {
            if (step == "released" || step == "published")
                EXPECT_TRUE((step == "released" ? watch.released : published).tryWait(60'000)) << step;
            else
                WallClock::set(at(step));
        }
    }

    /// The attributes that the component wrote, or tried to, in this order.
    std::string writtenAttributes() const {
        const std::regex write("setSeqAttr<> dName :\\S+ attrName :(\\w+)");
        const std::string lines = log.str();
        std::string names = "wrote:";
        for (std::sregex_iterator found(lines.begin(), lines.end(), write), end; found != end; ++found)
            names += " " + found->str(1);
        return names + "\n";
    }

    std::string reports() const {
        if (!fs::exists(root.reportFolder()))
            return "reports: none\n";
        std::string names = "reports:", texts;
        for (const std::string& name : TemporaryRoot::filesIn(root.reportFolder())) {
            const std::string text = readReport(root.reportFolder() / name);
            EXPECT_EQ(faultIn(text), "") << name;
            names += " " + name;
            texts += text;
        }
        EXPECT_EQ(TemporaryRoot::filesIn(root.temporaryFolder()), Texts{});
        return names + "\n" + texts;
    }

    TemporaryRoot root;
    std::ostringstream log;
    ReleaseWatch watch;
    std::unique_ptr<VorNode::MeasurementProducer> producer;
    std::unique_ptr<VorNode::Node> node;
};

void expectFacts(const std::string& seen, const Texts& row) {
    for (std::size_t cell = 3; cell < row.size(); ++cell) {
        const bool isThere = row[cell][0] != '!';
        const std::string fact = row[cell][0] == '@' ? golden(row[cell].substr(1))
                                                     : withLineFeeds(row[cell].substr(isThere ? 0 : 1));
        EXPECT_EQ(seen.find(fact) != std::string::npos, isThere) << fact << " in " << seen;
    }
}

/// The nodes follow each other: each loads the library anew and finds its storage anew.
void runNodes(const std::string& table) {
    for (const Texts& row : goldenTable(table)) {
        SCOPED_TRACE(row[0]);
        std::istringstream course(row[2]);
        std::string zone, start;
        course >> zone >> start;
        const WallClock clock(at(start));
        expectFacts(NodeRun(row[1], zone).follow(course), row);
    }
}

}  // namespace

TEST(Node, MakesTheReportsOfItsJobs) {
    runNodes("node-runs.txt");
}

TEST(Node, NamesReportsOfItsOwnModelAfterTheHost) {
    const WallClock clock(at("2026-03-05T10:00:59+01:00"));
    std::istringstream course("released");
    const fs::path model = VorNode::InstallPaths::ofThisProgram().model;

    const std::string seen =
        NodeRun("sed -i /Utc/d node.xml; cp " + model.string() + " model.xml", "CET-1").follow(course);

    EXPECT_NE(seen.find("A20260305.1000+0100-1001+0100_" + Poco::Environment::nodeName() + ".xml"), seen.npos)
        << seen;
}

TEST(Node, KnowsTheSettingsThatTheComponentReads) {
    const WallClock clock(at("2026-03-05T10:00:30Z"));
    NodeRun run("echo '<C><VorPmComp/></C>' >node.xml", "UTC");
    run.node->startComponent();
    run.node->stop();

    const std::regex lookUp("'?(\\w+)'? does not exist in cfg file");
    const std::string lines = run.log.str();
    std::set<std::string> read;
    for (std::sregex_iterator found(lines.begin(), lines.end(), lookUp), end; found != end; ++found)
        read.insert(found->str(1));
    const Texts known = VorNode::componentSettings();
    EXPECT_EQ(read, std::set<std::string>(known.begin(), known.end()));
}

TEST(Node, AnnouncesCapabilitiesInOrderUntilOneFails) {
    runNodes("capabilities.txt");
}

TEST(Node, WarnsOfARecordedClassThatCollectorsWouldMisfile) {
    const NodeRun run("true", "UTC");
    ASSERT_EQ(run.node->warnings().size(), 1U);
    EXPECT_NE(run.node->warnings()[0].find("counters.json: class \"C1\" of job J1: "), std::string::npos);
}

TEST(Node, PublishesKernelCountersThatReadTheSameByPlaceAndByNumber) {
    const WallClock clock(at("2026-03-05T10:14:30+01:00"));
    // This machine's files, and two resources of which either has values that the other lacks.
    NodeRun run(
        "mkdir -p proc/pressure; ln -s /sys .; cd proc; echo some total=1 >pressure/cpu; "
        "echo full total=1 >pressure/io; "
        "ln -s /proc/stat /proc/meminfo /proc/loadavg /proc/net /proc/diskstats /proc/softirqs .; "
        "cp '" +
            VorNode::InstallPaths::ofThisProgram().model.string() + "' ../model.xml",
        "CET-1");
    run.node->start();
    std::istringstream course("2026-03-05T10:14:58+01:00 released released released released released");
    run.await(course);
    run.node->stop();

    const auto names = TemporaryRoot::filesIn(run.root.reportFolder());
    EXPECT_EQ(names.size(), 4U);
    for (const std::string& name : names) {
        const std::string report = readReport(run.root.reportFolder() / name);
        EXPECT_EQ(valuesByPlace(report), valuesByNumber(report)) << report;
    }
}

TEST(Node, ProgramShowsWarningsAndEveryFaultOfItsInput) {
    const fs::path folder = fs::read_symlink("/proc/self/exe").parent_path();
    const fs::path model = VorNode::InstallPaths::ofThisProgram().model;
    const TemporaryRoot root;
    const std::string run = (folder / "vor-node").string() + " run --capabilities --root . --model m.xml";

    EXPECT_EQ(runScript(root.path(), "sed 's/>%H</>name</; s/<Value>5</<Value>6</' " + model.string() +
                                         " >m.xml && " + run + " >output 2>&1"),
              0);
    EXPECT_NE(readFile(root.path() / "output").find("vor-node: warning: m.xml:"), std::string::npos);
    EXPECT_EQ(runScript(root.path(),
                        "sed -i 's/>name</>%q</; s/<Value>6</<Value>six</' m.xml; " + run + " >output 2>&1"),
              2);
    EXPECT_NE(readFile(root.path() / "output").find("\nvor-node: "), std::string::npos);
}

TEST(Node, ProgramRefusesWhatItCannotUseAndEndsWellWhenItIsToldTo) {
    const std::string folder = fs::read_symlink("/proc/self/exe").parent_path();
    for (const Texts& row : goldenTable("node-program.txt")) {
        SCOPED_TRACE(row[0]);
        const TemporaryRoot root;
        const std::string script = "PATH=" + folder + ":$PATH; ( " + row[1] + " ) >output 2>&1";
        EXPECT_EQ(std::to_string(runScript(root.path(), script)), row[2]);
        expectFacts(readFile(root.path() / "output"), row);
    }
}

}  // namespace VorTest
