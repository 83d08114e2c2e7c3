#include "PmTaskManager.h"

#include <exception>
#include <utility>

#include <Poco/DateTime.h>

#include "PmConfigHandler.h"
#include "PmDataCollector.h"
#include "PmLog.h"
#include "PmReportWriter.h"
#include "PmTask.h"
#include "PmUtils.h"
#include "ScopeGuard.h"

namespace VorPm {

namespace {

constexpr std::uint64_t nanosecondsPerSecond = 1'000'000'000;
constexpr long millisecondsPerSecond = 1'000;
/// Timers fire up to a millisecond early. A phase must not end before its second does, or an event could open
/// another one, whose report would replace the first one's.
constexpr long timerSlackMilliseconds = 2;

constexpr int minTimerSeconds = 1;
constexpr int maxTimerSeconds = 50;
constexpr int defaultTimerSeconds = 50;

constexpr int minPoolThreads = 2;
constexpr int maxPoolThreads = 16;
constexpr int poolIdleSeconds = 60;

std::int64_t wholeSeconds(const Poco::Timestamp& instant) {
    return instant.epochMicroseconds() / Poco::Timestamp::resolution();
}

}  // namespace

PmTaskManager::PmTaskManager(PmDataCollector& dataCollector, PmConfigHandler& configHandler)
    : _dataCollector(dataCollector),
      _configHandler(configHandler),
      _timer(0, 0),
      _timerSeconds(getTimerFromConfigOrDefault()),
      _threadPool("PM Threadpool", minPoolThreads, maxPoolThreads, poolIdleSeconds) {}

PmTaskManager::~PmTaskManager() {
    try {
        {
            // The pool cannot go while the timer still waits on one of its threads.
            Poco::Mutex::ScopedLock lock(_queueMutex);
            _timer.stop();
        }
        if (!_writers.empty()) {
            finalizeWriters();
        }
    } catch (...) {
        LOG_ERROR("Unexpected exception while publishing the reports that were left open");
    }
}

KelReturnT PmTaskManager::pushGp(const VorOamSpiPmEventValue_1& event) {
    LOG_TRACE(" >> ");
    Poco::Mutex::ScopedLock lock(_queueMutex);
    ScopeGuard handBackUnlessTaken([&] { _dataCollector.releaseGp(event.gpId); });
    ScopeGuard closePhaseUnlessQueued([this, phaseBefore = _phase] {
        if (_phase != phaseBefore) {
            abandonPhase();
        }
    });
    if (!isValid(event)) {
        handBackUnlessTaken.run();
    } else {
        QueuedGp queued{createHolder(event), _phase};
        // From here on the holder hands the GP back.
        handBackUnlessTaken.dismiss();
        if (queued.gp.isNull()) {
            closePhaseUnlessQueued.dismiss();
            LOG_ERROR("No PM interface found");
            return VorReturnAbsent;
        }
        _queue.push_back(std::move(queued));
        closePhaseUnlessQueued.dismiss();
        _gpAvailable.set();
    }
    LOG_TRACE(" << ");
    return VorReturnOk;
}

bool PmTaskManager::isValid(const VorOamSpiPmEventValue_1& event) {
    const Poco::Timestamp now;
    const std::uint64_t gpEnd = event.gpEndTime / nanosecondsPerSecond;
    const auto gpId = static_cast<unsigned long long>(event.gpId);
    if (!isValidTime(now, gpEnd)) {
        LOG_WARNING("Discarding event with gpid %llu and gpEndTime %llu (VOR time stamp: %s)", gpId,
                    static_cast<unsigned long long>(gpEnd), std::to_string(wholeSeconds(now)).c_str());
        return false;
    }
    if (_timerExpired.value() == 0) {
        return true;
    }
    const int remaining = _timerSeconds - Poco::DateTime().second();
    if (remaining < 1) {
        LOG_WARNING("Discarding event with gpid %llu, arrived too late", gpId);
        return false;
    }
    // Once stopped, nothing would end a phase.
    if (_running.value() != 0) {
        openPhase(remaining);
        LOG_TRACE("Started timer set to %d seconds from now", remaining);
    }
    return true;
}

bool PmTaskManager::isValidTime(const Poco::Timestamp& now, std::uint64_t gpEnd) {
    const std::int64_t difference = wholeSeconds(now) - static_cast<std::int64_t>(gpEnd);
    if (difference >= -1 && difference <= 1) {
        return true;
    }
    const int second = Poco::DateTime(now).second();
    return second < getTimerFromConfigOrDefault() && difference == second;
}

void PmTaskManager::openPhase(int remainingSeconds) {
    ++_phase;
    _timerExpired = 0;
    _timer.stop();
    _timer.setStartInterval(remainingSeconds * millisecondsPerSecond + timerSlackMilliseconds);
    _timer.start(Poco::TimerCallback<PmTaskManager>(*this, &PmTaskManager::onTimer), _threadPool);
}

/// Closes the phase that an event opened which then could not be queued.
void PmTaskManager::abandonPhase() {
    _timer.stop();
    _timerExpired = 1;
    _gpAvailable.set();
}

Poco::AutoPtr<PmGpData> PmTaskManager::createHolder(const VorOamSpiPmEventValue_1& event) {
    if (VorOamSpiPm_2* pm = _dataCollector.getVorOamSpiPm_2()) {
        return new PmGpData(event, pm);
    }
    if (VorOamSpiPm_1* pm = _dataCollector.getVorOamSpiPm_1()) {
        return new PmGpData(event, pm);
    }
    return nullptr;
}

std::size_t PmTaskManager::queueSize() const {
    Poco::Mutex::ScopedLock lock(_queueMutex);
    return _queue.size();
}

void PmTaskManager::run() {
    LOG_TRACE(" >> ");
    try {
        while (_running.value() != 0) {
            if (_timerExpired.value() != 0 || hasStaleWork()) {
                handleExpiredTimer();
            }
            QueuedGp queued;
            if (popGp(queued)) {
                processGp(queued);
            } else {
                _gpAvailable.wait();
            }
        }
        finalizeWriters();
    } catch (...) {
        LOG_ERROR("Unexpected exception is received, PM service is stopped");
        throw;
    }
    LOG_TRACE(" << ");
}

bool PmTaskManager::popGp(QueuedGp& out) {
    Poco::Mutex::ScopedLock lock(_queueMutex);
    if (_queue.empty()) {
        return false;
    }
    out = _queue.front();
    _queue.pop_front();
    return true;
}

void PmTaskManager::processGp(QueuedGp& queued) {
    LOG_TRACE(" >> ");
    if (!_writers.empty() && _writersPhase < queued.phase) {
        finalizeWriters();
    }
    if (_dataCollector.populateMo(queued.gp) != VorReturnOk) {
        LOG_ERROR("Missing required data, skipping report with job id %llu",
                  static_cast<unsigned long long>(queued.gp->_gpId));
        return;
    }
    if (isPhaseOver(queued.phase)) {
        return;
    }
    _writersPhase = queued.phase;
    PmReportWriter* writer = getWriter(queued.gp);
    if (writer == nullptr) {
        return;
    }
    PmTask(queued.gp, _dataCollector, writer).runTask();
    LOG_TRACE(" << ");
}

bool PmTaskManager::hasStaleWork() const {
    Poco::Mutex::ScopedLock lock(_queueMutex);
    return (!_writers.empty() && _writersPhase < _phase) ||
           (!_queue.empty() && _queue.front().phase < _phase);
}

bool PmTaskManager::isPhaseOver(std::uint64_t phase) const {
    Poco::Mutex::ScopedLock lock(_queueMutex);
    return _timerExpired.value() != 0 || phase < _phase;
}

PmReportWriter* PmTaskManager::getWriter(Poco::AutoPtr<PmGpData>& gp) {
    Poco::FastMutex::ScopedLock lock(_writersMutex);
    const std::string key = timePeriod2Str(gp->_granularityPeriod) + gp->_jobGroup;
    const auto open = _writers.find(key);
    if (open != _writers.end()) {
        return open->second.get();
    }
    LOG_TRACE("New report writer for key (%s)", key.c_str());
    auto writer = std::make_unique<PmReportWriter>(gp->_jobGroup, gp->_compressionType, gp->_gpStartTime,
                                                   gp->_gpEndTime);
    populateWriterWithCommonMoData(writer.get());
    if (!writer->openFile()) {
        return nullptr;
    }
    return _writers.emplace(key, std::move(writer)).first->second.get();
}

void PmTaskManager::populateWriterWithCommonMoData(PmReportWriter* writer) {
    _dataCollector.fetchSwVersionAttributes();
    writer->setElementType(_dataCollector.getProductDesignation());
    writer->setSwVersion(_dataCollector.getSwVersion());

    std::string dnPrefix;
    _dataCollector.getMeString("dnPrefix", dnPrefix);
    writer->setMeDnPrefix(dnPrefix);

    std::string userLabel;
    _dataCollector.getMeString("userLabel", userLabel);
    writer->setMeUserLabel(userLabel);

    std::string meId;
    _dataCollector.getMeString("networkManagedElementId", meId);
    if (meId.empty()) {
        _dataCollector.getMeString("managedElementId", meId);
    }
    if (meId.empty()) {
        LOG_ERROR("Error fetching ME name from mo db");
    }
    writer->setMeId(meId);
    writer->setUtcFormat(_dataCollector.isUtcFormatEnabled());
}

void PmTaskManager::handleExpiredTimer() {
    LOG_TRACE(" >> ");
    {
        Poco::Mutex::ScopedLock lock(_queueMutex);
        const bool closed = _timerExpired.value() != 0;
        while (!_queue.empty() && (closed || _queue.front().phase < _phase)) {
            LOG_WARNING("Discarding GP with ID %llu, timer expired",
                        static_cast<unsigned long long>(_queue.front().gp->_gpId));
            _queue.pop_front();
        }
    }
    finalizeWriters();
    LOG_TRACE(" << ");
}

void PmTaskManager::finalizeWriters() {
    LOG_TRACE(" >> ");
    Poco::FastMutex::ScopedLock lock(_writersMutex);
    publishWriters();
    unsigned short maxNoOfPmFiles = 0;
    if (_configHandler.getMaxNoOfPmFiles(maxNoOfPmFiles) == VorReturnOk) {
        performHousekeeping(maxNoOfPmFiles);
    }
    LOG_TRACE(" << ");
}

/// Publishes every report that is complete and empties the registry, in key order. When one of them throws,
/// the others are finished before the exception goes on.
void PmTaskManager::publishWriters() {
    std::exception_ptr fault;
    bool published = false;
    while (!_writers.empty()) {
        const std::unique_ptr<PmReportWriter> writer = std::move(_writers.extract(_writers.begin()).mapped());
        try {
            if (writer->finalizeReport()) {
                published = true;
                writer->publish();
            }
        } catch (...) {
            if (fault == nullptr) {
                fault = std::current_exception();
            }
        }
    }
    if (published) {
        syncReportFolder();
    }
    if (fault != nullptr) {
        std::rethrow_exception(fault);
    }
}

void PmTaskManager::onTimer(Poco::Timer& /*timer*/) {
    LOG_TRACE(" >> ");
    _timerExpired = 1;
    interruptWriters();
    LOG_TRACE(" << ");
}

void PmTaskManager::interruptWriters() {
    LOG_TRACE(" >> ");
    Poco::FastMutex::ScopedLock lock(_writersMutex);
    for (const auto& [key, writer] : _writers) {
        writer->interrupt();
    }
    _gpAvailable.set();
    LOG_TRACE(" << ");
}

int PmTaskManager::stop() {
    LOG_TRACE(" >> ");
    {
        Poco::Mutex::ScopedLock lock(_queueMutex);
        _timer.stop();
        _running = 0;
    }
    interruptWriters();
    LOG_TRACE(" << ");
    return VorReturnOk;
}

int PmTaskManager::getTimerFromConfigOrDefault() {
    const int seconds = _configHandler.getPmTimerExpirationTime();
    if (seconds < minTimerSeconds || seconds > maxTimerSeconds) {
        LOG_WARNING(
            "pmTimerExpirationTime in VOR PM configuration out of range [0 - %d].Setting to default %d "
            "seconds",
            maxTimerSeconds, defaultTimerSeconds);
        return defaultTimerSeconds;
    }
    return seconds;
}

}  // namespace VorPm
