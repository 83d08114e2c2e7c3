#include "PmTimeTexts.h"

#include <array>

#include <Poco/DateTime.h>
#include <Poco/DateTimeFormat.h>
#include <Poco/DateTimeFormatter.h>
#include <Poco/DateTimeParser.h>

namespace VorPm {

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

std::string convertToUtc(const std::string& time, const std::string& format) {
    Poco::DateTime instant;
    int offset = 0;
    Poco::DateTimeParser::parse(Poco::DateTimeFormat::ISO8601_FORMAT, time, instant, offset);
    instant.makeUTC(offset);
    return Poco::DateTimeFormatter::format(instant, format);
}

}  // namespace VorPm
