#include <algorithm>
#include <string_view>

#include "counters/KernelClasses.h"
#include "counters/KernelText.h"

namespace VorNode {

namespace {

constexpr ValueType types[]{
    {"fullAvg10HundredthsOfPercent", Kind::Gauge, "0.01 %",
     "share of time with all tasks stalled, mean of 10 s"},
    {"fullAvg300HundredthsOfPercent", Kind::Gauge, "0.01 %",
     "share of time with all tasks stalled, mean of 300 s"},
    {"fullAvg60HundredthsOfPercent", Kind::Gauge, "0.01 %",
     "share of time with all tasks stalled, mean of 60 s"},
    {"fullStallTime", Kind::Counter, "microseconds", "time with all tasks stalled"},
    {"someAvg10HundredthsOfPercent", Kind::Gauge, "0.01 %",
     "share of time with some task stalled, mean of 10 s"},
    {"someAvg300HundredthsOfPercent", Kind::Gauge, "0.01 %",
     "share of time with some task stalled, mean of 300 s"},
    {"someAvg60HundredthsOfPercent", Kind::Gauge, "0.01 %",
     "share of time with some task stalled, mean of 60 s"},
    {"someStallTime", Kind::Counter, "microseconds", "time with some task stalled"},
};

/// Where a type stands: in the line that begins with `line`, behind `key` and an equals sign.
struct Place {
    std::string_view line;
    std::string_view key;
    std::string_view type;
};

constexpr Place places[]{
    {"some", "avg10", "someAvg10HundredthsOfPercent"},   {"some", "avg60", "someAvg60HundredthsOfPercent"},
    {"some", "avg300", "someAvg300HundredthsOfPercent"}, {"some", "total", "someStallTime"},
    {"full", "avg10", "fullAvg10HundredthsOfPercent"},   {"full", "avg60", "fullAvg60HundredthsOfPercent"},
    {"full", "avg300", "fullAvg300HundredthsOfPercent"}, {"full", "total", "fullStallTime"},
};

Reading readField(std::string_view key, std::string_view value) {
    return orNil(key == "total" ? parseCount(value) : parseHundredths(value));
}

/// Reads lines such as "some avg10=0.05 avg60=0.13 avg300=0.13 total=2219839".
SampledObject readResourcePressure(const KernelFolders& folders, const std::string& resource) {
    SampledObject pressure{resource, {}};
    for (const std::string& line : readLines(folders.proc / "pressure" / resource)) {
        const Fields fields = splitFields(line);
        for (const std::string_view field : fields) {
            const auto [key, value] = splitPair(field, '=');
            const auto* const place =
                std::find_if(std::begin(places), std::end(places), [&, name = key](const Place& candidate) {
                    return candidate.line == fields[0] && candidate.key == name;
                });
            if (place != std::end(places)) {
                pressure.readings[place->type] = readField(key, value);
            }
        }
    }
    return pressure;
}

Sample readPressure(const KernelFolders& folders) {
    return {readResourcePressure(folders, "cpu"), readResourcePressure(folders, "memory"),
            readResourcePressure(folders, "io")};
}

}  // namespace

constinit const KernelClass pressureClass{
    "Pressure", "stalls for want of `cpu`, `memory` and `io`, from `/proc/pressure/<object>`", types,
    readPressure};

}  // namespace VorNode
