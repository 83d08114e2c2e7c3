#include "services/PeriodicMeasurement.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace VorNode {

namespace {

constexpr Poco::Timestamp::TimeDiff longestDelay = 5 * Poco::Timestamp::TimeDiff{1'000'000};

}  // namespace

PeriodicMeasurement::PeriodicMeasurement(MeasurementJob job, std::unique_ptr<JobMeasurement> measurement)
    : _job(std::move(job)),
      _length(std::chrono::microseconds(_job.granularityPeriod).count()),
      _measurement(std::move(measurement)) {}

void PeriodicMeasurement::begin(Poco::Timestamp now) {
    _beganAtBoundary = false;
    _end = (lastBoundary(now) + _length).epochMicroseconds();
    _measurement->begin();
}

MeasuredPeriod PeriodicMeasurement::cut(Poco::Timestamp now) {
    const Poco::Timestamp last = lastBoundary(now);
    const bool isWhole = _beganAtBoundary && isNoticedInTime(end(), now);
    _beganAtBoundary = false;
    _end = (last + _length).epochMicroseconds();
    MeasurementData data = _measurement->cut(isWhole ? Coverage::Whole : Coverage::Partial);
    _beganAtBoundary = isNoticedInTime(last, now);
    return {_job, last, std::move(data)};
}

Poco::Timestamp PeriodicMeasurement::lastBoundary(Poco::Timestamp now) const {
    return now - now.epochMicroseconds() % _length;
}

bool PeriodicMeasurement::isNoticedInTime(Poco::Timestamp boundary, Poco::Timestamp now) const {
    return now - boundary <= std::min(_length / 2, longestDelay);
}

}  // namespace VorNode
