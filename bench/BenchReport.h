// Reports of the benches' data, in the component's storage. What is refused ends the bench.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <Poco/AutoPtr.h>

#include "PmGpData.h"
#include "PmReportWriter.h"
#include "PmStorage.h"

namespace VorBench {

using HeldGps = std::vector<Poco::AutoPtr<VorPm::PmGpData>>;

inline void require(bool holds) {
    if (!holds) {
        throw std::runtime_error("an operation of a bench was refused");
    }
}

/// GPs as the worker hands them to the writer. The data stays the caller's.
inline HeldGps makeGps(const std::vector<VorOamSpiPmGpData_2>& data) {
    static VorOamSpiPm_2 service{{}, nullptr, [](std::uint64_t) -> KelReturnT { return VorReturnOk; }};
    HeldGps gps;
    for (const auto& records : data) {
        gps.emplace_back(new VorPm::PmGpData({1, "J1", 0, 0}, &service));
        gps.back()->_pmData2 = &records;
        gps.back()->_granularityPeriod = gps.back()->_reportingPeriod = VorPm::TimePeriod::Min15;
    }
    return gps;
}

inline std::unique_ptr<VorPm::PmReportWriter> openReport(const std::string& jobGroup = "") {
    constexpr std::uint64_t begin = 1'488'718'800'000'000'000;
    constexpr std::uint64_t end = 1'488'719'700'000'000'000;
    auto writer = std::make_unique<VorPm::PmReportWriter>(jobGroup, VorPm::NO_COMPRESSION, begin, end);
    writer->setUtcFormat(true);
    writer->setMeId("ME1");
    require(writer->openFile());
    return writer;
}

/// Where `openReport` writes, without a job group.
inline std::string reportPath() {
    return VorPm::getReportFileTempLocation() + "/A20170305.1300-1315_ME1.xml";
}

/// Writes the GPs into one report, from its opening to its end.
inline void writeReport(HeldGps& gps) {
    const auto writer = openReport();
    for (auto& gp : gps) {
        require(writer->writeGpData(*gp));
    }
    require(writer->finalizeReport());
}

}  // namespace VorBench
