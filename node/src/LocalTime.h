// Local time as people read it.
#pragma once

#include <ctime>

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

}  // namespace VorNode
