#include "services/PmService.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <utility>

#include "services/Operation.h"

namespace VorNode {

namespace {

/// So long at most a change of the wall clock goes unnoticed.
constexpr Poco::Timestamp::TimeDiff longestWait = 1'000'000;

constexpr char componentName[] = "VorNodePm";
constexpr char interfaceName[] = "VorOamSpiPm";

std::uint64_t toNanoseconds(Poco::Timestamp time) {
    return static_cast<std::uint64_t>(time.epochMicroseconds()) * 1000;
}

}  // namespace

PmService::PmService(PmVersions versions, std::vector<MeasurementJob> jobs, MeasurementProducer& producer,
                     EventRouter& router, PmServiceListener& listener)
    : _table1{{componentName, interfaceName, "1"},
              [](std::uint64_t gpId, const VorOamSpiPmGpData_1** data) {
                  return getGp(gpId, data, &GpRecords::version1);
              },
              &releaseGp},
      _table2{{componentName, interfaceName, "2"},
              [](std::uint64_t gpId, const VorOamSpiPmGpData_2** data) {
                  return getGp(gpId, data, &GpRecords::version2);
              },
              &releaseGp},
      _versions(versions),
      _jobs(std::move(jobs)),
      _producer(producer),
      _router(router),
      _listener(listener),
      _store(listener) {}

PmService::~PmService() {
    stopAnnouncing();
}

std::vector<KelMgmtSpiInterface_1*> PmService::interfaces() {
    std::vector<KelMgmtSpiInterface_1*> offered;
    if (isOffered1(_versions)) {
        offered.push_back(&_table1.identity);
    }
    if (isOffered2(_versions)) {
        offered.push_back(&_table2.identity);
    }
    return offered;
}

void PmService::start() {
    std::deque<PeriodicMeasurement> measurements;
    for (const MeasurementJob& job : _jobs) {
        measurements.emplace_back(job, _producer.startJob(job.id, job.classes));
    }
    _measurements = std::move(measurements);
    beginPeriods(_clocks.read().wall);
    _thread.emplace("PmService").start(_runnable);
}

void PmService::stopAnnouncing() {
    if (_thread) {
        _stop.set();
        _thread->join();
        _thread.reset();
    }
}

std::vector<PmService::NextPeriodEnd> PmService::nextPeriodEnds() const {
    std::vector<NextPeriodEnd> ends;
    for (const PeriodicMeasurement& measurement : _measurements) {
        ends.push_back({measurement.job().id, measurement.end()});
    }
    return ends;
}

void PmService::schedule() {
    while (!_stop.tryWait(millisecondsToWait())) {
        const auto [now, step] = _clocks.read();
        if (step != 0) {
            _listener.clockStepped(static_cast<double>(step) / 1e6);
            beginPeriods(now);
        }
        for (MeasuredPeriod& period : cutDuePeriods(now)) {
            tryPeriod(period.job, [&] { announce(period); });
        }
        _store.reportOverdue();
    }
}

long PmService::millisecondsToWait() const {
    const Poco::Timestamp now;
    Poco::Timestamp::TimeDiff wait = longestWait;
    for (const PeriodicMeasurement& measurement : _measurements) {
        wait = std::min(wait, measurement.end() - now);
    }
    return static_cast<long>((std::max<Poco::Timestamp::TimeDiff>(wait, 0) + 999) / 1000);
}

void PmService::beginPeriods(Poco::Timestamp now) {
    for (PeriodicMeasurement& measurement : _measurements) {
        tryPeriod(measurement.job(), [&] { measurement.begin(now); });
    }
}

std::vector<MeasuredPeriod> PmService::cutDuePeriods(Poco::Timestamp now) {
    std::vector<MeasuredPeriod> periods;
    for (PeriodicMeasurement& measurement : _measurements) {
        if (measurement.isDue(now)) {
            tryPeriod(measurement.job(), [&] { periods.push_back(measurement.cut(now)); });
        }
    }
    return periods;
}

void PmService::announce(MeasuredPeriod& period) {
    const MeasurementJob& job = period.job;
    const GpInfo gp = _store.add(job.id, period.end, job.granularityPeriod,
                                 std::make_unique<const GpRecords>(std::move(period.data), _versions));
    _listener.gpAnnounced(gp);
    const Poco::Timestamp begin = period.end - std::chrono::microseconds(job.granularityPeriod).count();
    VorOamSpiPmEventValue_1 value{gp.id, job.id.c_str(), toNanoseconds(begin), toNanoseconds(period.end)};
    const char* const eventType = isOffered2(_versions) ? "VorOamSpiPmEventTypeGpReady_2"  //
                                                        : "VorOamSpiPmEventTypeGpReady_1";
    if (_router.send(eventType, &value) == 0) {
        _store.withdraw(gp.id);
    }
}

template <class StepT>
void PmService::tryPeriod(const MeasurementJob& job, StepT step) {
    try {
        step();
    } catch (const std::exception& fault) {
        _listener.periodLost(job.id, fault.what());
    }
}

template <class GpDataT>
KelReturnT PmService::getGp(std::uint64_t gpId, const GpDataT** data,
                            const GpDataT* (GpRecords::*tree)() const) {
    return carryOut([=] {
        requirePointers(data);
        *data = nullptr;
        const GpRecords* records = current()._store.fetch(gpId);
        if (records == nullptr) {
            throw Refusal{VorReturnAbsent};
        }
        *data = (records->*tree)();
    });
}

KelReturnT PmService::releaseGp(std::uint64_t gpId) {
    return carryOut([=] {
        if (!current()._store.release(gpId)) {
            throw Refusal{VorReturnAbsent};
        }
    });
}

}  // namespace VorNode
