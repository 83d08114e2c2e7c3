// The texts of a report's times, and its name, which is made of them.
#include <ctime>

#include <Poco/DateTime.h>
#include <Poco/DateTimeFormatter.h>
#include <Poco/Timestamp.h>

#include "PmReportWriter.h"

namespace VorPm {

namespace {

constexpr std::uint64_t nanosecondsPerSecond = 1'000'000'000;
constexpr std::uint64_t nanosecondsPerMicrosecond = 1'000;

/// Seconds east of UTC, valid at that instant.
int localOffset(std::uint64_t nanoseconds) {
    const auto seconds = static_cast<std::time_t>(nanoseconds / nanosecondsPerSecond);
    std::tm local{};
    tzset();
    localtime_r(&seconds, &local);
    return static_cast<int>(local.tm_gmtoff);
}

}  // namespace

std::string PmReportWriter::createFileName() const {
    std::string name = "A" + formatTime(_beginTime, "%Y%m%d", _utcFormat) + "." + clockText(_beginTime) +
                       "-" + clockText(_endTime) + "_" + _meId;
    if (!_jobGroup.empty()) {
        name += "_" + _jobGroup;
    }
    return name + ".xml";
}

std::string PmReportWriter::clockText(std::uint64_t nanoseconds) const {
    return formatTime(nanoseconds, "%H%M", _utcFormat) +
           (_utcFormat ? std::string() : timeZoneSuffix(nanoseconds));
}

std::string PmReportWriter::formatTime(std::uint64_t nanoseconds, const std::string& format, bool utc) {
    const int offset = localOffset(nanoseconds);
    Poco::Timestamp instant(static_cast<Poco::Timestamp::TimeVal>(nanoseconds / nanosecondsPerMicrosecond));
    if (!utc) {
        instant += offset * Poco::Timestamp::resolution();
    }
    return Poco::DateTimeFormatter::format(Poco::DateTime(instant), format, offset);
}

std::string PmReportWriter::formatTimeStamp(std::uint64_t nanoseconds, bool utc) {
    return formatTime(nanoseconds, utc ? "%Y-%m-%dT%H:%M:%S" : "%Y-%m-%dT%H:%M:%S%z", utc);
}

std::string PmReportWriter::timeZoneSuffix(std::uint64_t nanoseconds) {
    const std::string suffix = Poco::DateTimeFormatter::tzdRFC(localOffset(nanoseconds));
    return suffix == "GMT" ? "+0000" : suffix;
}

}  // namespace VorPm
