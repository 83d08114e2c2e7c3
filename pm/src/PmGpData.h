#pragma once

#include <cstdint>
#include <string>
#include <type_traits>

#include <Poco/AtomicCounter.h>
#include <Poco/Bugcheck.h>

#include "PmTimeTexts.h"
#include "VorOamSpiPm.h"

namespace VorPm {

/// How a report is published; every number but `GZIP` publishes plain XML.
enum CompressionTypes : int { GZIP = 0, NO_COMPRESSION = 100 };

/// One GP on its way through the component. Shared by `Poco::AutoPtr`; the last reference hands the GP back
/// to the PM service, once, and deletes the holder. References may be taken and dropped on any thread; the
/// fields are written by the worker only, after the holder has left the queue.
class PmGpData {
  public:
    /// Copies what it needs of the event. The GP is handed back through `pm`, a `VorOamSpiPm_1` or
    /// `VorOamSpiPm_2`.
    template <class PmT>
    PmGpData(const VorOamSpiPmEventValue_1& event, PmT* pm)
        : _gpId(event.gpId),
          _jobId(event.jobId != nullptr ? event.jobId : ""),
          _gpStartTime(event.gpStartTime),
          _gpEndTime(event.gpEndTime) {
        if constexpr (std::is_same_v<PmT, VorOamSpiPm_1>) {
            _pmSpi1 = pm;
        } else {
            _pmSpi2 = pm;
        }
    }
    PmGpData(const PmGpData&) = delete;
    PmGpData& operator=(const PmGpData&) = delete;

    void duplicate() { ++_refCount; }
    void release() noexcept;

    /// The data fetched in that version, which must have been fetched.
    template <class GpDataT>
    const GpDataT& getPmData() const {
        if constexpr (std::is_same_v<GpDataT, VorOamSpiPmGpData_1>) {
            poco_check_ptr(_pmData);
            return *_pmData;
        } else {
            poco_check_ptr(_pmData2);
            return *_pmData2;
        }
    }

    const std::uint64_t _gpId;
    const std::string _jobId;
    /// ns since the Unix epoch.
    const std::uint64_t _gpStartTime;
    const std::uint64_t _gpEndTime;
    /// Measurement data, owned by the PM service; at most one of the two is set.
    const VorOamSpiPmGpData_1* _pmData = nullptr;
    const VorOamSpiPmGpData_2* _pmData2 = nullptr;
    /// The job's data, as the model has it.
    TimePeriod _granularityPeriod{};
    TimePeriod _reportingPeriod{};
    std::string _jobGroup;
    int _compressionType = NO_COMPRESSION;

  private:
    ~PmGpData() = default;

    KelReturnT handBack() const noexcept;

    Poco::AtomicCounter _refCount{1};
    VorOamSpiPm_1* _pmSpi1 = nullptr;
    VorOamSpiPm_2* _pmSpi2 = nullptr;
};

}  // namespace VorPm
