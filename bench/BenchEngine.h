#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

#include "LoggingWrapper.h"
#include "PmEngine.h"

namespace VorBench {

using Clock = std::chrono::steady_clock;

inline double secondsSince(Clock::time_point begin, Clock::time_point end = Clock::now()) {
    return std::chrono::duration<double>(end - begin).count();
}

/// The engine of the tests, without what their checks cost: nothing is traced, and the PM service lends out
/// the same data for every GP and counts what is handed back. Its jobs are "0" to "99", each with a report of
/// its own.
struct BenchEngine : VorTest::PmEngine {
    BenchEngine() {
        pm2.getGp = [](std::uint64_t, const VorOamSpiPmGpData_2** data) -> KelReturnT {
            *data = lent;
            return VorReturnOk;
        };
        pm2.releaseGp = [](std::uint64_t) -> KelReturnT {
            ++released;
            released.notify_all();
            return VorReturnOk;
        };
        setTracing(false);
        root.createReportFolders();
        for (int job = 0; job < 100; ++job) {
            const std::string id = std::to_string(job), dn = VorTest::pmRootDn + ",PmJob=" + id;
            model->addObject(dn);
            model->commit({{dn, "granularityPeriod", {std::int16_t{3}}},
                           {dn, "reportingPeriod", {std::int16_t{3}}},
                           {dn, "jobGroup", {id}}});
        }
    }
    ~BenchEngine() { tasks.reset(); }

    static BenchEngine& instance() {
        static BenchEngine single;
        return single;
    }

    static void setTracing(bool on) {
        using Vor::LoggingWrapper;
        LoggingWrapper::instance().setLevel(on ? LoggingWrapper::traceLevel : LoggingWrapper::defaultLevel);
    }

    /// A new task manager and its worker, for phases that end at that second of the minute. `stop` follows.
    void start(int phaseEnd) {
        renew(std::to_string(phaseEnd));
        collector.setJobGroupingSupport();
        setTracing(true);
        startWorker();
        setTracing(false);
        released = 0;
    }

    static void setClock(std::int64_t secondOfMinute) {
        VorTest::WallClock::set((VorTest::minute + secondOfMinute) * 1'000'000'000);
    }

    /// The event of a GP that ended at the minute's beginning. The job's id stays the caller's.
    static VorOamSpiPmEventValue_1 makeEvent(const char* job, std::uint64_t id = 1) {
        constexpr std::uint64_t end = VorTest::minute * 1'000'000'000ULL;
        return {id, job, end - 60'000'000'000, end};
    }

    static void awaitReleases(std::size_t count) {
        for (std::size_t seen = released; seen < count; seen = released) {
            released.wait(seen);
        }
    }

    static inline const VorOamSpiPmGpData_2* lent = nullptr;
    static inline std::atomic<std::size_t> released = 0;
};

}  // namespace VorBench
