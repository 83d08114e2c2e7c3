// Periods, and texts of times. Pure: any thread.
#pragma once

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

/// Converts an ISO 8601 text with zone to UTC and prints it with `format`. Throws `Poco::SyntaxException`.
std::string convertToUtc(const std::string& time, const std::string& format);

}  // namespace VorPm
