#include "PmTimeTexts.h"

#include <array>
#include <ctime>

#include <Poco/DateTime.h>
#include <Poco/DateTimeFormat.h>
#include <Poco/DateTimeFormatter.h>
#include <Poco/DateTimeParser.h>
#include <Poco/Timestamp.h>

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

std::string timePeriod2Str(TimePeriod period) {
    static constexpr std::array texts{"PT10S",   "PT30S",   "PT60S",    "PT300S",  "PT900S",
                                      "PT1800S", "PT3600S", "PT43200S", "PT86400S"};
    const auto index = static_cast<std::size_t>(period) - static_cast<std::size_t>(TimePeriod::Sec10);
    return index < texts.size() ? texts[index] : "Unknown Time";
}

std::vector<Vor::MoAccessor::Enum> getSupportedRopPeriods() {
    std::vector<Vor::MoAccessor::Enum> periods;
    for (int period = static_cast<int>(TimePeriod::Min1); period <= static_cast<int>(TimePeriod::Hour24);
         ++period) {
        periods.emplace_back(static_cast<std::int16_t>(period));
    }
    return periods;
}

std::string formatTime(std::uint64_t nanoseconds, const std::string& format, TimeForm form) {
    const int offset = localOffset(nanoseconds);
    Poco::Timestamp instant(static_cast<Poco::Timestamp::TimeVal>(nanoseconds / nanosecondsPerMicrosecond));
    if (form == TimeForm::Local) {
        instant += offset * Poco::Timestamp::resolution();
    }
    return Poco::DateTimeFormatter::format(Poco::DateTime(instant), format, offset);
}

std::string formatTimeStamp(std::uint64_t nanoseconds, TimeForm form) {
    return formatTime(nanoseconds, form == TimeForm::Local ? "%Y-%m-%dT%H:%M:%S%z" : "%Y-%m-%dT%H:%M:%S",
                      form);
}

std::string timeZoneSuffix(std::uint64_t nanoseconds) {
    const std::string suffix = Poco::DateTimeFormatter::tzdRFC(localOffset(nanoseconds));
    return suffix == "GMT" ? "+0000" : suffix;
}

std::string convertToUtc(const std::string& time, const std::string& format) {
    Poco::DateTime instant;
    int offset = 0;
    Poco::DateTimeParser::parse(Poco::DateTimeFormat::ISO8601_FORMAT, time, instant, offset);
    instant.makeUTC(offset);
    return Poco::DateTimeFormatter::format(instant, format);
}

}  // namespace VorPm
