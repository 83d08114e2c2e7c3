// Where measurement data comes from: the seam between the PM service and its producers.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "counters/Measurements.h"

namespace VorNode {

/// How much of a granularity period was measured.
enum class Coverage { Whole, Partial };

/// The measurement of one job, one granularity period after the other. Owned by the PM service, begun by the
/// thread that starts the service and used by its scheduler thread from then on.
class JobMeasurement {
  public:
    virtual ~JobMeasurement() = default;

    /// Begins a granularity period at this moment; a period that was running is forgotten.
    virtual void begin() = 0;

    /// Ends the running period, begins the next at the same moment, and returns the data of the ended one.
    virtual MeasurementData cut(Coverage coverage) = 0;
};

/// Measures for jobs. Owned by the application, asked by the thread that starts the PM service.
class MeasurementProducer {
  public:
    virtual ~MeasurementProducer() = default;

    /// The measurement of the job `jobId` over the classes named. Throws `InputError` when the producer
    /// does not know a class, naming those that it knows.
    virtual std::unique_ptr<JobMeasurement> startJob(const std::string& jobId,
                                                     const std::vector<std::string>& classes) = 0;

    /// What people should know before these jobs are measured: each text names the place and what to do.
    virtual std::vector<std::string> warnings(const std::vector<std::string>& /*jobIds*/) const { return {}; }

    /// Whether there may be arrays and Nil among the data, which version 1 of the PM service does not carry.
    virtual bool needsVersion2() const { return true; }
};

}  // namespace VorNode
