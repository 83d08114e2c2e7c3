// The PM service: runs the measurement jobs, announces their granularity periods and lends out the data.
#pragma once

#include <deque>
#include <optional>
#include <string>
#include <vector>

#include <Poco/Event.h>
#include <Poco/RunnableAdapter.h>
#include <Poco/Thread.h>

#include "VorOamSpiPm.h"
#include "counters/MeasurementProducer.h"
#include "model/MeasurementJob.h"
#include "services/ClockWatch.h"
#include "services/EventRouter.h"
#include "services/GpStore.h"
#include "services/PeriodicMeasurement.h"
#include "services/PmServiceListener.h"
#include "services/Service.h"

namespace VorNode {

/// Runs measurement jobs: cuts their granularity periods (GP) on one scheduler thread by the wall clock,
/// announces each by an event, and lends its records out until they are released. Owned by the application,
/// which keeps the producer, the router and the listener longer than the service.
///
/// A period is never cut before its boundary. What all jobs measured until a boundary is read first and
/// announced then, so that announcing does not shift measuring. An event says "GpReady_2" when version 2 is
/// offered, else "GpReady_1"; the times in it are the period's boundaries even if the job began inside it.
/// When the wall clock was set, every job drops its running period and begins inside another, as it did at
/// the start (`ClockWatch`, `PeriodicMeasurement`).
///
/// The service has no lock of its own and calls the router, the producer and the listener without any; the
/// store of GPs guards itself. So GPs may be fetched and released by any thread at any time, inside an
/// event's callback too.
class PmService : public Service<PmService> {
  public:
    PmService(PmVersions versions, std::vector<MeasurementJob> jobs, MeasurementProducer& producer,
              EventRouter& router, PmServiceListener& listener);
    /// Stops announcing.
    ~PmService();

    /// What consumers look up, one for each version offered; they live as long as the service.
    std::vector<KelMgmtSpiInterface_1*> interfaces();

    /// Begins to measure for all jobs and starts the scheduler thread; once, on the application's thread.
    /// Throws the producer's `InputError` when it cannot measure for a job; nothing is started then.
    void start();

    /// No event is sent any more when it returns. What was announced may still be fetched and released. On
    /// the application's thread, any number of times.
    void stopAnnouncing();

    struct NextPeriodEnd {
        std::string jobId;
        Poco::Timestamp end;
    };

    /// Where the running period of each job ends. Any thread, once `start` has returned.
    std::vector<NextPeriodEnd> nextPeriodEnds() const;

    /// Any thread.
    GpCounts counts() const { return _store.counts(); }
    std::vector<GpInfo> unreleased() const { return _store.unreleased(); }

  private:
    /// The scheduler thread.
    void schedule();
    long millisecondsToWait() const;
    void beginPeriods(Poco::Timestamp now);
    std::vector<MeasuredPeriod> cutDuePeriods(Poco::Timestamp now);
    void announce(MeasuredPeriod& period);

    /// Runs a step of a job's period, which is lost when that throws.
    template <class StepT>
    void tryPeriod(const MeasurementJob& job, StepT step);

    template <class GpDataT>
    static KelReturnT getGp(std::uint64_t gpId, const GpDataT** data,
                            const GpDataT* (GpRecords::*tree)() const);
    static KelReturnT releaseGp(std::uint64_t gpId);

    VorOamSpiPm_1 _table1;
    VorOamSpiPm_2 _table2;
    const PmVersions _versions;
    const std::vector<MeasurementJob> _jobs;
    MeasurementProducer& _producer;
    EventRouter& _router;
    PmServiceListener& _listener;
    GpStore _store;
    /// Both used by `start`, then by the scheduler thread.
    ClockWatch _clocks;
    std::deque<PeriodicMeasurement> _measurements;
    Poco::Event _stop{Poco::Event::EVENT_MANUALRESET};
    Poco::RunnableAdapter<PmService> _runnable{*this, &PmService::schedule};
    /// While it runs.
    std::optional<Poco::Thread> _thread;
};

}  // namespace VorNode
