#include "TestNode.h"

#include <chrono>
#include <cstdlib>
#include <regex>

#include <Poco/DateTimeFormat.h>
#include <Poco/DateTimeParser.h>
#include <Poco/Event.h>
#include <gtest/gtest.h>

#include "Golden.h"
#include "app/AttributeText.h"
#include "counters/RecordedCounters.h"

namespace VorTest {

namespace {

constexpr std::chrono::seconds deadline{60};
constexpr long tryMilliseconds = 100;

constexpr int minute = 3;

std::string jobObject(const std::string& id, int period) {
    const std::string number = std::to_string(period);
    return "<Object dn=\"ManagedElement=1,SystemFunctions=1,Pm=1,PmJob=" + id +
           "\"><Attribute name=\"granularityPeriod\">" + number +
           "</Attribute><Attribute name=\"reportingPeriod\">" + number +
           "</Attribute><Attribute name=\"jobState\">1</Attribute><Attribute "
           "name=\"measuredClasses\"><Value>" +
           (id == "J1" ? "Memory" : "Load") + "</Value></Attribute></Object>\n";
}

}  // namespace

bool GpWatch::waitForReleases(int count) {
    std::unique_lock lock(_mutex);
    return _changed.wait_for(lock, deadline, [&] { return _released >= count; });
}

void GpWatch::gpReleased(const VorNode::GpInfo& /*gp*/) {
    std::lock_guard lock(_mutex);
    ++_released;
    _changed.notify_all();
}

TestNode::TestNode(const std::string& nodeSettings) {
    ::setenv("TZ", "CET-1", 1);
    writeFile(configurationFile(),
              "<C><VorPmComp><pmTimerExpirationTime>1</pmTimerExpirationTime></VorPmComp><VorNode>" +
                  nodeSettings + "</VorNode></C>");
    runJobs({{"J1", minute}, {"J2", minute}});
}

void TestNode::runJobs(const std::map<std::string, int>& periodByJob) const {
    std::string model = VorTest::golden("system-model.xml");
    for (const auto& [id, period] : periodByJob) {
        model.insert(model.find("</Model>"), jobObject(id, period));
    }
    writeFile(modelFile(), model);
}

TestNode::~TestNode() {
    stop();
}

VorNode::NodeOptions TestNode::options() const {
    const VorNode::InstallPaths paths = VorNode::InstallPaths::ofThisProgram();
    return {configurationFile(), modelFile(), _root.path(), paths.library, paths.commands, 8};
}

void TestNode::start(const std::string& countersJson) {
    const std::filesystem::path counters = _root.path() / "counters.json";
    writeFile(counters, countersJson);
    start(std::make_unique<VorNode::RecordedCounters>(counters));
}

void TestNode::start(std::unique_ptr<VorNode::MeasurementProducer> producer) {
    _producer = std::move(producer);
    _node = std::make_unique<VorNode::Node>(options(), *_producer, gps, _log);
    _node->start();
    _started = true;
}

void TestNode::stop() {
    if (_node == nullptr) {
        return;
    }
    _node->stop();
    const VorNode::GpCounts counts = _node->pmService().counts();
    EXPECT_EQ(counts.released, counts.announced);
    EXPECT_TRUE(counts.announced > 0 || !_started) << "no GP was delivered";
    _node.reset();
}

std::string TestNode::read(const std::string& attribute) const {
    const VorNode::AttributeReading reading = _node->client().read(
        "ManagedElement=1,SystemFunctions=1,Pm=1,PmMeasurementCapabilities=1", attribute);
    return reading.result == 0 ? VorNode::attributeText(reading.values)
                               : "result " + std::to_string(reading.result);
}

void TestNode::edit(const std::filesystem::path& file, const std::string& pattern,
                    const std::string& replacement) {
    writeFile(file, std::regex_replace(readFile(file), std::regex(pattern), replacement));
}

bool TestNode::waitForReports(std::size_t count) const {
    Poco::Event never;
    const auto giveUp = std::chrono::steady_clock::now() + deadline;
    while (reports().size() < count) {
        if (std::chrono::steady_clock::now() > giveUp) {
            return false;
        }
        never.tryWait(tryMilliseconds);
    }
    return true;
}

std::int64_t at(const std::string& iso) {
    int offset = 0;
    Poco::DateTime time = Poco::DateTimeParser::parse(Poco::DateTimeFormat::ISO8601_FORMAT, iso, offset);
    time.makeUTC(offset);
    return time.timestamp().epochMicroseconds() * 1000;
}

}  // namespace VorTest
