#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>

#include <Poco/AtomicCounter.h>
#include <Poco/AutoPtr.h>
#include <Poco/Event.h>
#include <Poco/Mutex.h>
#include <Poco/Runnable.h>
#include <Poco/ThreadPool.h>
#include <Poco/Timer.h>
#include <Poco/Timestamp.h>

#include "IPmEventManager.h"
#include "PmGpData.h"

namespace VorPm {

class PmConfigHandler;
class PmDataCollector;
class PmReportWriter;

/// The spine of the component: judges announced GPs, queues them, and has the worker write them into the
/// reports of the running collection phase. Owned by the component.
///
/// A collection phase begins with the first GP accepted while none is open and ends when the timer fires, at
/// a configured second of that minute; all its reports are published then. Phases are numbered: the worker
/// may look only after the next phase has begun, and must mix neither GPs nor reports of the two.
///
/// Threads: `pushGp` any, `run` the worker's, `onTimer` a pool thread's, the rest the component's. The two
/// locks are never held together.
class PmTaskManager : public Poco::Runnable, public IPmEventManager {
  public:
    /// Both outlive the task manager. The length of the phases is taken from the configuration here.
    PmTaskManager(PmDataCollector& dataCollector, PmConfigHandler& configHandler);

    /// The worker has ended. GPs still queued are handed back; reports that a worker which died left open are
    /// published.
    ~PmTaskManager() override;

    PmTaskManager(const PmTaskManager&) = delete;
    PmTaskManager& operator=(const PmTaskManager&) = delete;

    /// The worker: returns after `stop`, with all reports published. An exception that nobody below handled
    /// is logged and thrown on.
    void run() override;

    KelReturnT pushGp(const VorOamSpiPmEventValue_1& event) override;

    /// Ends the worker after its current GP, which is abandoned. Always 0. Once, or several times one after
    /// the other.
    int stop();

    std::size_t queueSize() const;

  private:
    struct QueuedGp {
        Poco::AutoPtr<PmGpData> gp;
        std::uint64_t phase = 0;
    };

    // Intake, with the queue's lock held.
    bool isValid(const VorOamSpiPmEventValue_1& event);
    bool isValidTime(const Poco::Timestamp& now, std::uint64_t gpEnd);
    void openPhase(int remainingSeconds);
    void abandonPhase();
    /// Null when there is no PM service.
    Poco::AutoPtr<PmGpData> createHolder(const VorOamSpiPmEventValue_1& event);

    // Worker.
    bool popGp(QueuedGp& out);
    void processGp(QueuedGp& queued);
    /// True when the next phase began before the worker saw that an earlier one had ended.
    bool hasStaleWork() const;
    bool isPhaseOver(std::uint64_t phase) const;
    /// Null, with nothing registered, when the report's file cannot be opened.
    PmReportWriter* getWriter(Poco::AutoPtr<PmGpData>& gp);
    void populateWriterWithCommonMoData(PmReportWriter* writer);
    void handleExpiredTimer();
    void finalizeWriters();
    void publishWriters();

    // Timer and stop.
    void onTimer(Poco::Timer& timer);
    void interruptWriters();

    int getTimerFromConfigOrDefault();

    std::deque<QueuedGp> _queue;
    /// Guards `_queue`, `_phase`, and the timer's stopping and arming.
    mutable Poco::Mutex _queueMutex;
    /// The number of the last phase opened.
    std::uint64_t _phase = 0;
    /// Open reports by granularity period and job group.
    std::map<std::string, std::unique_ptr<PmReportWriter>> _writers;
    /// Guards `_writers`, which the worker alone changes, and keeps a writer alive while it is interrupted.
    Poco::FastMutex _writersMutex;
    /// The phase that all open writers belong to; the worker's.
    std::uint64_t _writersPhase = 0;
    /// Set when a GP was queued and when writers were interrupted.
    Poco::Event _gpAvailable;
    PmDataCollector& _dataCollector;
    PmConfigHandler& _configHandler;
    Poco::AtomicCounter _running{1};
    /// 1 while no phase is open.
    Poco::AtomicCounter _timerExpired{1};
    Poco::Timer _timer;
    const int _timerSeconds;
    Poco::ThreadPool _threadPool;
};

}  // namespace VorPm
