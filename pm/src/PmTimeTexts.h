// Periods and the texts of times. Pure: any thread, no state but the process's time zone.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "MoAccessor.h"

namespace VorPm {

/// Granularity and reporting periods as the managed-object model numbers them. Other numbers do arrive.
enum class TimePeriod : int {
    Sec10 = 1,
    Sec30 = 2,
    Min1 = 3,
    Min5 = 4,
    Min15 = 5,
    Min30 = 6,
    Hour1 = 7,
    Hour12 = 8,
    Hour24 = 9
};

/// The duration in ISO 8601 form, such as "PT900S"; "Unknown Time" for a number that is no period.
std::string timePeriod2Str(TimePeriod period);

/// The result output periods that the component supports, ascending.
std::vector<Vor::MoAccessor::Enum> getSupportedRopPeriods();

/// Which clock a report's times are told in.
enum class TimeForm { Local, Utc };

/// The instant, in ns since the Unix epoch, printed with a `Poco::DateTimeFormatter` format.
std::string formatTime(std::uint64_t nanoseconds, const std::string& format, TimeForm form);

/// YYYY-MM-DDThh:mm:ss, in local form followed by the offset from UTC, such as +01:00.
std::string formatTimeStamp(std::uint64_t nanoseconds, TimeForm form);

/// The local offset from UTC valid at that instant, such as +0100.
std::string timeZoneSuffix(std::uint64_t nanoseconds);

/// Converts an ISO 8601 text with zone to UTC and prints it with `format`. Throws `Poco::SyntaxException`.
std::string convertToUtc(const std::string& time, const std::string& format);

}  // namespace VorPm
