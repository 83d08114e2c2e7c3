#include <algorithm>

#include <Poco/TemporaryFile.h>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "Findings.h"
#include "InputFile.h"
#include "TemporaryRoot.h"
#include "counters/JsonNode.h"
#include "counters/KernelCounters.h"
#include "counters/RecordedCounters.h"
#include "framework/NodeInput.h"
#include "framework/OpenFiles.h"

namespace VorNode {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using testing::ThrowsMessage;

namespace {

constexpr char objects[] =
    "<Object dn='ManagedElement=1'/><Object dn='ManagedElement=1,SystemFunctions=1,Pm=1'/>"
    "<Object dn='ManagedElement=1,SystemFunctions=1,Pm=1,PmMeasurementCapabilities=1'>"
    "<Attribute "
    "name='supportedMeasJobGps'><Value>1</Value><Value>2</Value><Value>3</Value></Attribute></Object>";
constexpr char grouping[] = "<Attribute name='jobGroupingSupport' type='bool'/>";

std::string job(const std::string& id, int period, const std::string& group = "") {
    return "\n<Object dn='ManagedElement=1,SystemFunctions=1,Pm=1,PmJob=" + id +
           "'><Attribute name='jobState'>1</Attribute><Attribute name='measuredClasses'><Value>Load</Value>"
           "</Attribute><Attribute name='jobGroup'>" +
           group + "</Attribute><Attribute name='granularityPeriod'>" + std::to_string(period) +
           "</Attribute></Object>";
}

/// The two files of a node, and what is found in them.
struct Input {
    std::string configuration = "<C><VorPmComp/><VorNode/></C>";
    std::string capabilities = std::string(grouping) + "<Attribute name='maxNoOfPmFiles' type='uint16'/>";
    std::string modelObjects = objects + job("J1", 3);

    void read() {
        VorTest::writeFile(configurationFile.path(), configuration);
        VorTest::writeFile(
            modelFile.path(),
            "<Model><Class path='ManagedElement'/><Class path='ManagedElement,SystemFunctions,Pm'/>"
            "<Class path='ManagedElement,SystemFunctions,Pm,PmMeasurementCapabilities'>" +
                capabilities +
                "<Attribute name='supportedMeasJobGps' type='enum' seq='true'/></Class>"
                "<Class path='ManagedElement,SystemFunctions,Pm,PmJob'>"
                "<Attribute name='granularityPeriod' type='enum'/><Attribute name='jobGroup' type='string'/>"
                "<Attribute name='jobState' type='enum'/>"
                "<Attribute name='measuredClasses' type='string' seq='true'/></Class>" +
                modelObjects + "</Model>");
        findings = {};
        input = readNodeInput(configurationFile.path(), modelFile.path(), findings);
    }

    Poco::TemporaryFile configurationFile, modelFile;
    Findings findings;
    NodeInput input;
};

struct RecordedFile {
    explicit RecordedFile(const std::string& text) { VorTest::writeFile(file.path(), text); }
    Poco::TemporaryFile file;
};

}  // namespace

TEST(NodeInput, HasNothingToSayOfUsableFiles) {
    Input given;
    given.configuration =
        "<C><VorPmComp><group><maxNoOfPmFiles>+65535</maxNoOfPmFiles></group>"
        "<pmTimerExpirationTime>50</pmTimerExpirationTime><produceRopFilesInUtcFormat> TRUE "
        "</produceRopFilesInUtcFormat></VorPmComp></C>";
    given.modelObjects += job("J2", 3) + job("J3", 3, "g");

    given.read();

    EXPECT_THAT(given.findings.faults(), IsEmpty());
    EXPECT_THAT(given.findings.warnings(), IsEmpty());
    EXPECT_EQ(given.input.jobs.size(), 3U);
}

TEST(NodeInput, RefusesSettingsThatTheComponentWouldRefuse) {
    for (const char* setting :
         {"<maxNoOfPmFiles>65536</maxNoOfPmFiles>", "<maxNoOfPmFiles>-1</maxNoOfPmFiles>",
          "<maxNoOfPmFiles> 5</maxNoOfPmFiles>", "<maxNoOfPmFiles/>",
          "<maxNoOfPmFiles>1</maxNoOfPmFiles><maxNoOfPmFiles>1</maxNoOfPmFiles>",
          "<produceRopFilesInUtcFormat>yes</produceRopFilesInUtcFormat>",
          "<produceRopFilesInUtcFormat> </produceRopFilesInUtcFormat>"}) {
        Input given;
        given.configuration = std::string("<C><VorPmComp>\n") + setting + "</VorPmComp></C>";
        given.read();
        EXPECT_THAT(given.findings.faults(), ElementsAre(StartsWith(given.configurationFile.path() + ":2: ")))
            << setting;
    }
}

TEST(NodeInput, WarnsOfSettingsThatAreReplacedOrNotRead) {
    for (const char* setting :
         {"<pmTimerExpirationTime>0</pmTimerExpirationTime>",
          "<pmTimerExpirationTime>51</pmTimerExpirationTime>",
          "<pmTimerExpirationTime>7 </pmTimerExpirationTime>",
          "<pmTimerExpirationTime>7</pmTimerExpirationTime><a><pmTimerExpirationTime>7</"
          "pmTimerExpirationTime></a>",
          "<maxNoOfPMFiles>7</maxNoOfPMFiles>", "<group><utc/></group>"}) {
        Input given;
        given.configuration = std::string("<C><VorPmComp>\n") + setting + "</VorPmComp></C>";
        given.read();
        EXPECT_THAT(given.findings.warnings(),
                    ElementsAre(StartsWith(given.configurationFile.path() + ":2: ")))
            << setting;
        EXPECT_THAT(given.findings.faults(), IsEmpty());
    }
}

TEST(NodeInput, RefusesWhatItIsNotToldOnce) {
    for (const char* configuration : {"<C/>", "<C><VorPmComp/><a><VorPmComp/></a></C>"}) {
        Input given;
        given.configuration = configuration;
        given.read();
        EXPECT_THAT(given.findings.faults(), ElementsAre(HasSubstr("<VorPmComp>; write exactly one")));
    }
}

TEST(NodeInput, RefusesAModelWithoutWhatTheComponentNeeds) {
    Input given;
    given.modelObjects = "";

    given.read();

    EXPECT_THAT(given.findings.faults(),
                ElementsAre(HasSubstr("of the class ManagedElement;"), HasSubstr(",Pm;"),
                            HasSubstr("PmMeasurementCapabilities;"), HasSubstr("no active job")));
}

TEST(NodeInput, TellsTheFaultsOfBothFilesTogether) {
    Input given;
    given.configuration = "<C>";
    given.modelObjects += job("J2", 77) + job("J3", 78);

    given.read();

    EXPECT_THAT(given.findings.faults(), ElementsAre(StartsWith(given.configurationFile.path()),
                                                     StartsWith(given.modelFile.path() + ":3: job "),
                                                     StartsWith(given.modelFile.path() + ":4: job ")));
}

TEST(NodeInput, WarnsOfAttributesThatTheComponentCannotWrite) {
    Input given;
    given.capabilities =
        "\n<Attribute name='fileRPSupported' type='string'/>\n"
        "<Attribute name='supportedRopPeriods' type='enum'/>";

    given.read();

    const std::string file = given.modelFile.path();
    EXPECT_THAT(given.findings.warnings(),
                ElementsAre(StartsWith(file + ":2: attribute fileRPSupported"),
                            StartsWith(file + ":3: attribute supportedRopPeriods"),
                            StartsWith(file + ":1: has no attribute maxNoOfPmFiles")));
}

TEST(NodeInput, WarnsOfJobsWhoseReportsAreNotWhatPeopleExpect) {
    const char* const unannounced = "clients are not told of its period of 300 s";
    const char* const several = "its reports hold several periods with one end";
    const char* const shared = "their reports get one name";
    const struct {
        const char* what;
        std::string jobs;
        std::vector<const char*> warnings;
        bool hasGroups = true;
    } rows[]{{"not announced", job("J2", 4), {unannounced}},
             {"30 s, in a group of its own", job("J2", 2, "g"), {several}},
             {"10 s and 60 s without group", job("J2", 1), {several, shared}},
             {"10 s and 60 s without groups", job("J2", 1, "g"), {several, shared}, false},
             {"10 s and 30 s in a group", job("J2", 1, "g") + job("J3", 2, "g"), {several, several, shared}},
             {"longer periods have names of their own", job("J2", 3) + job("J3", 4), {unannounced}}};
    for (const auto& row : rows) {
        Input given;
        given.modelObjects += row.jobs;
        if (!row.hasGroups)
            given.capabilities.erase(0, sizeof grouping - 1);
        given.read();
        std::vector<testing::Matcher<std::string>> expected;
        for (const char* warning : row.warnings)
            expected.push_back(HasSubstr(warning));
        EXPECT_THAT(given.findings.warnings(), testing::ElementsAreArray(expected)) << row.what;
    }
}

TEST(NodeInput, RefusesAClassThatTheProducerDoesNotHave) {
    Input given;
    given.read();
    given.input.jobs[0].classes = {"Lord"};
    KernelCounters kernel;

    checkMeasuring(given.input, kernel, given.findings);

    EXPECT_THAT(given.findings.faults(), ElementsAre(StartsWith(given.modelFile.path() + ":2: job J1: ")));
}

TEST(NodeInput, WarnsOfWhatVersion1LeavesOut) {
    const struct {
        const char* versions;
        const char* value;
        bool isLeftOut;
    } rows[]{{"1", "\"int\":1", false},
             {"1", "\"float\":1", false},
             {"1", "\"ints\":[1]", true},
             {"1", "\"nil\":true", true},
             {"1 2", "\"nil\":true", false}};
    for (const auto& row : rows) {
        const RecordedFile recorded(
            R"({"jobs":{"J1":{"classes":[{"objects":[{"ldn":"","values":[{"type":"a",)" +
            std::string(row.value) + "}]}]}]}}}");
        RecordedCounters counters(recorded.file.path());
        Input given;
        given.configuration = "<C><VorPmComp/><VorNode>\n<pmServiceVersions>" + std::string(row.versions) +
                              "</pmServiceVersions></VorNode></C>";
        given.read();
        checkMeasuring(given.input, counters, given.findings);
        EXPECT_EQ(std::ranges::count(given.findings.warnings(), 1,
                                     [&](const std::string& warning) {
                                         return warning.starts_with(given.configurationFile.path() +
                                                                    ":2: pmServiceVersions is 1");
                                     }),
                  row.isLeftOut)
            << row.value;
    }
}

TEST(RecordedCounters, WarnOfAJobThatTheModelDoesNotHave) {
    const RecordedFile recorded("{\"jobs\": {\"J1\": {\"classes\": []},\n\"J\": {\"classes\": []}}}");

    const RecordedCounters counters(recorded.file.path());

    EXPECT_THAT(counters.warnings({"J1", "J2"}),
                ElementsAre(StartsWith(recorded.file.path() + ":2: the model has no active job J,")));
}

TEST(JsonNode, HasALineAmongOthersLikeIt) {
    const RecordedFile document("{\"a\": {\"x\": [1,\n2]},\n\"b\": {\"x\": [1,\n2]}}");
    const struct {
        std::vector<std::string> path;
        int line;
    } rows[]{{{}, 1},   {{"a", "x", "1"}, 2}, {{"b"}, 3}, {{"b", "x", "0"}, 3}, {{"b", "x", "1"}, 4},
             {{"c"}, 0}};
    for (const auto& row : rows)
        EXPECT_EQ(lineOfValue(document.file.path(), row.path), row.line) << testing::PrintToString(row.path);
}

TEST(KernelCounters, WarnOfFoldersWithoutCounters) {
    const VorTest::TemporaryRoot folder;

    EXPECT_THAT(KernelCounters(folder.internalRoot(), folder.noBackup()).warnings({}),
                ElementsAre(HasSubstr("--proc and --sys")));
    EXPECT_THAT(KernelCounters("/proc", folder.noBackup()).warnings({}), IsEmpty());
}

TEST(InputFile, IsARegularFileOfALimitedSize) {
    const VorTest::TemporaryRoot folder;
    const std::string path = folder.path() / "file";
    ::mkfifo(path.c_str(), 0600);
    EXPECT_THAT([&] { readInputFile(path, "a file"); },
                ThrowsMessage<InputError>(HasSubstr("not a regular")));
    std::filesystem::remove(path);
    VorTest::writeFile(path, "text");
    EXPECT_EQ(readInputFile(path, "a file"), "text");
    std::filesystem::resize_file(path, 64 * 1024 * 1024 + 1);
    EXPECT_THAT([&] { readInputFile(path, "a file"); }, ThrowsMessage<InputError>(HasSubstr("64 MiB")));
    EXPECT_THROW(readInputFile("/dev/null", "a file"), InputError);
}

TEST(OpenFiles, AreAsManyAsTheProcessMayHaveUpToALimit) {
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    const rlim_t hard = std::min<rlim_t>(limit.rlim_max, 65'536);
    limit.rlim_cur = 100;
    ::setrlimit(RLIMIT_NOFILE, &limit);

    raiseOpenFilesLimit();

    ::getrlimit(RLIMIT_NOFILE, &limit);
    EXPECT_EQ(limit.rlim_cur, hard);
}

}  // namespace VorNode
