#include "app/RunStatus.h"

#include <algorithm>
#include <exception>

#include <Poco/NumberFormatter.h>

#include "app/AttributeText.h"
#include "app/ClockText.h"
#include "app/Console.h"
#include "app/Notice.h"
#include "app/ReportFile.h"
#include "framework/Node.h"

namespace VorNode {

namespace {

/// Reports of one phase appear together; after so long, in microseconds, without another the phase is over.
constexpr Poco::Clock::ClockDiff settleTime = 1'000'000;
constexpr Poco::Clock::ClockDiff microsecondsPerSecond = 1'000'000;
constexpr Poco::Timestamp::TimeDiff microsecondsPerMinute = 60 * microsecondsPerSecond;

std::string countText(std::size_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string periodText(std::chrono::seconds period) {
    const auto seconds = period.count();
    if (seconds % 3600 == 0) {
        return std::to_string(seconds / 3600) + " h";
    }
    return seconds % 60 == 0 ? std::to_string(seconds / 60) + " min" : std::to_string(seconds) + " s";
}

std::string describe(const GpInfo& gp) {
    return "GP " + std::to_string(gp.id) + " of job " + gp.jobId + ", ended " + clockText(gp.end);
}

std::int64_t minuteOf(Poco::Timestamp time) {
    return time.epochMicroseconds() / microsecondsPerMinute;
}

std::chrono::milliseconds untilNextSecond() {
    const auto passed = Poco::Timestamp().epochMicroseconds() % microsecondsPerSecond;
    return std::chrono::ceil<std::chrono::milliseconds>(
        std::chrono::microseconds(microsecondsPerSecond - passed));
}

}  // namespace

void RunStatus::showStart(const Node& node) {
    std::lock_guard lock(_mutex);
    _console.say("node running, storage in " + node.root().path().string());
    const auto nextEnds = node.pmService().nextPeriodEnds();
    for (const MeasurementJob& job : node.jobs()) {
        const auto next = std::find_if(nextEnds.begin(), nextEnds.end(),
                                       [&job](const auto& end) { return end.jobId == job.id; });
        std::string classes;
        for (const std::string& name : job.classes) {
            classes += (classes.empty() ? "" : ", ") + name;
        }
        _console.say("job " + job.id + ": " + classes + " every " + periodText(job.granularityPeriod) +
                     (next != nextEnds.end() ? ", next period ends " + clockText(next->end) : ""));
    }
}

void RunStatus::showCapabilities(const Node& node) {
    for (const ObjectReading& object :
         node.client().readObjectsOf("ManagedElement,SystemFunctions,Pm,PmMeasurementCapabilities")) {
        _console.say("capabilities, as clients read them: " + object.dn);
        for (const AttributeReading& reading : object.attributes) {
            if (reading.result == VorReturnOk) {
                _console.say("  " + reading.attribute + ": " + attributeText(reading.values));
            } else {
                complain(reading.attribute + " cannot be read (result " + std::to_string(reading.result) +
                         ")");
            }
        }
    }
}

std::optional<std::chrono::milliseconds> RunStatus::tick(const Node& node) {
    std::lock_guard lock(_mutex);
    if (_phase.reports > 0 && _phase.lastReport.isElapsed(settleTime)) {
        endPhase();
    }
    if (!_console.isTerminal()) {
        return untilPhaseEnds();
    }
    _console.showProgress(progressText(node));
    return untilNextSecond();
}

void RunStatus::reportPublished(const std::filesystem::path& path) {
    // Read before the lock is taken: a large report must not hold up those who announce and fetch.
    ReportFacts facts;
    std::string holds = ", and gone again";
    try {
        facts = readReportFacts(path);
        holds = ": " + std::to_string(facts.bytes) + " bytes, " + (facts.isComplete ? "" : "at least ") +
                countText(facts.blocks, "block") + ", " + countText(facts.values, "value");
    } catch (const std::exception&) {
        // A client may take a report away as soon as it is there.
    }
    std::lock_guard lock(_mutex);
    ++_phase.reports;
    _phase.values += facts.values;
    _phase.lastReport.update();
    _console.say("published " + path.string() + holds);
    _news.set();
}

void RunStatus::reportsMissed(const std::string& reason) {
    _console.writeError("vor-node: reports are published, but not all are shown: " + reason);
}

std::size_t RunStatus::phasesPublished() const {
    std::lock_guard lock(_mutex);
    return _phasesPublished;
}

void RunStatus::complain(const std::string& fault) {
    std::lock_guard lock(_mutex);
    ++_faults;
    _console.writeError("vor-node: " + fault);
}

bool RunStatus::checkEnd(const Node& node) {
    for (const GpInfo& gp : node.pmService().unreleased()) {
        complain(describe(gp) + ": delivered, but not released");
    }
    if (const auto errors = node.log().errorCount(); errors > 0) {
        complain("the component logged " + countText(errors, "error"));
    }
    std::lock_guard lock(_mutex);
    return _faults == 0;
}

void RunStatus::showEnd(const Node& node) {
    std::lock_guard lock(_mutex);
    if (_phase.open || _phase.reports > 0) {
        endPhase();
    }
    const GpCounts counts = node.pmService().counts();
    _console.say("node stopped: " + countText(counts.announced, "GP") + " delivered, " +
                 std::to_string(counts.fetched) + " fetched, " + std::to_string(counts.released) +
                 " released, " + countText(_phasesPublished, "phase") + " published");
}

void RunStatus::gpAnnounced(const GpInfo& gp) {
    std::lock_guard lock(_mutex);
    _unread.insert(gp.id);
    _console.say("ready: " + describe(gp));
}

void RunStatus::gpWithdrawn(const GpInfo& gp) {
    std::lock_guard lock(_mutex);
    _unread.erase(gp.id);
    _console.say("withdrawn, nobody is subscribed: " + describe(gp));
}

void RunStatus::gpFetched(const GpInfo& gp) {
    std::lock_guard lock(_mutex);
    _unread.erase(gp.id);
    if (_phase.open && _phase.minute != minuteOf(gp.end)) {
        endPhase();
    }
    if (!_phase.open) {
        openPhase(gp);
    }
    ++_phase.fetched;
}

void RunStatus::gpReleased(const GpInfo& gp) {
    std::lock_guard lock(_mutex);
    if (_unread.erase(gp.id) > 0) {
        _console.say("given back unread: " + describe(gp));
    }
}

void RunStatus::gpOverdue(const GpInfo& gp) {
    complain(describe(gp) + ": not released after two periods");
}

void RunStatus::clockStepped(double seconds) {
    _console.say("the clock was set by " + Poco::NumberFormatter::format(seconds, 1) +
                 " s: running periods are dropped, the next ones are suspect");
}

void RunStatus::periodLost(const std::string& jobId, const std::string& reason) {
    complain("a period of job " + jobId + " is lost: " + reason);
}

void RunStatus::openPhase(const GpInfo& gp) {
    _phase.open = true;
    _phase.minute = minuteOf(gp.end);
    _phase.opened.update();
    _console.say("collection phase opened by " + describe(gp));
}

void RunStatus::endPhase() {
    _console.say("collection phase ended: " + countText(_phase.fetched, "GP") + " fetched, " +
                 countText(_phase.reports, "report") + " published with " +
                 countText(_phase.values, "value"));
    if (_phase.reports > 0) {
        ++_phasesPublished;
        _news.set();
    }
    _phase = Phase{};
}

std::optional<std::chrono::milliseconds> RunStatus::untilPhaseEnds() const {
    if (_phase.reports == 0) {
        return std::nullopt;
    }
    const auto left = std::max<Poco::Clock::ClockDiff>(0, settleTime - _phase.lastReport.elapsed());
    return std::chrono::ceil<std::chrono::milliseconds>(std::chrono::microseconds(left));
}

std::string RunStatus::progressText(const Node& node) const {
    if (_phase.open) {
        return "collecting for " + std::to_string(_phase.opened.elapsed() / microsecondsPerSecond) + " s, " +
               countText(_phase.fetched, "GP") + " fetched";
    }
    const auto ends = node.pmService().nextPeriodEnds();
    const auto next = std::min_element(
        ends.begin(), ends.end(), [](const auto& left, const auto& right) { return left.end < right.end; });
    if (next == ends.end()) {
        return "";
    }
    const auto seconds =
        std::max<Poco::Timestamp::TimeDiff>(0, (next->end - Poco::Timestamp()) / microsecondsPerSecond);
    return "next period ends in " + std::to_string(seconds) + " s (" + clockText(next->end) + ")";
}

}  // namespace VorNode
