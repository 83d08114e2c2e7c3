#pragma once

#include <ctime>
#include <string>

#include <Poco/Timestamp.h>

#include "LocalTime.h"

namespace VorNode {

/// The local time of day, hh:mm:ss.
inline std::string clockText(Poco::Timestamp time) {
    const std::tm local = localTime(time);
    char text[sizeof "hh:mm:ss"];
    std::strftime(text, sizeof text, "%H:%M:%S", &local);
    return text;
}

}  // namespace VorNode
