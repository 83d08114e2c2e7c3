// Local time as people read it.
#pragma once

#include <ctime>
#include <string>

#include <Poco/DateTime.h>
#include <Poco/DateTimeFormatter.h>
#include <Poco/Timespan.h>
#include <Poco/Timestamp.h>

namespace VorNode {

/// The instant in the zone that is set now, with the offset valid at that instant. Any thread.
inline std::tm localTime(Poco::Timestamp instant) {
    const std::time_t seconds = instant.epochTime();
    std::tm local{};
    tzset();
    localtime_r(&seconds, &local);
    return local;
}

/// The instant as every line of the node begins, such as 2026-03-05T14:15:00.123+01:00. The zone is asked of
/// the system for that very instant: POCO's own knows today's offset only. Any thread.
inline std::string formatLocalTime(Poco::Timestamp instant) {
    const int offset = static_cast<int>(localTime(instant).tm_gmtoff);
    const Poco::DateTime shifted(instant + Poco::Timespan(offset, 0));
    return Poco::DateTimeFormatter::format(shifted, "%Y-%m-%dT%H:%M:%S.%i%z", offset);
}

}  // namespace VorNode
