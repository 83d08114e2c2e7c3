#pragma once

#include <atomic>
#include <memory>

#include <Poco/Timestamp.h>

#include "counters/MeasurementProducer.h"
#include "model/MeasurementJob.h"

namespace VorNode {

/// What was measured in one granularity period, `end - job.granularityPeriod` to `end`.
struct MeasuredPeriod {
    const MeasurementJob& job;
    Poco::Timestamp end;
    MeasurementData data;
};

/// Measures for one job and knows where its granularity periods end: at the multiples of their length since
/// the Unix epoch, so that no change of local time ever cuts one short.
///
/// Values are `Coverage::Whole` when they were measured from one boundary to the next, and `Partial` -
/// suspect - when measuring began inside the period or when either boundary was noticed late: by more than
/// half a period or more than 5 seconds, because the machine was slow or stopped. If further boundaries
/// passed before the first was noticed, all that was measured since the last cut is delivered once, as
/// `Partial` values of the last period that is complete; the periods skipped are not delivered.
///
/// Owned by the PM service and used by one thread at a time, but `end` by any.
class PeriodicMeasurement {
  public:
    /// The job's granularity period is longer than 0. Measuring starts with `begin`.
    PeriodicMeasurement(MeasurementJob job, std::unique_ptr<JobMeasurement> measurement);

    /// Begins to measure inside the period that `now` lies in; what was measured is dropped.
    void begin(Poco::Timestamp now);

    bool isDue(Poco::Timestamp now) const { return now >= end(); }

    /// Ends the period that is due at `now` and begins the next. The result refers to this object's job. When
    /// the producer throws the period is over nevertheless, and the next one not `Whole`.
    MeasuredPeriod cut(Poco::Timestamp now);

    const MeasurementJob& job() const { return _job; }
    /// Where the running period ends.
    Poco::Timestamp end() const { return _end.load(); }

  private:
    /// The last boundary that is not after `now`.
    Poco::Timestamp lastBoundary(Poco::Timestamp now) const;
    bool isNoticedInTime(Poco::Timestamp boundary, Poco::Timestamp now) const;

    const MeasurementJob _job;
    /// In microseconds, as are all differences of `Poco::Timestamp`.
    const Poco::Timestamp::TimeDiff _length;
    const std::unique_ptr<JobMeasurement> _measurement;
    std::atomic<Poco::Timestamp::TimeVal> _end{0};
    bool _beganAtBoundary = false;
};

}  // namespace VorNode
