#include <algorithm>
#include <array>
#include <string_view>

#include "counters/KernelClasses.h"
#include "counters/KernelText.h"

namespace VorNode {

namespace {

constexpr ValueType types[]{
    {"someAvg10", Kind::Gauge},        // % of time with some task stalled, mean of 10 s
    {"someAvg60", Kind::Gauge},        // the same of 60 s
    {"someAvg300", Kind::Gauge},       // the same of 300 s
    {"someStallTime", Kind::Counter},  // microseconds with some task stalled
    {"fullAvg10", Kind::Gauge},        // % of time with all tasks stalled, mean of 10 s
    {"fullAvg60", Kind::Gauge},        // the same of 60 s
    {"fullAvg300", Kind::Gauge},       // the same of 300 s
    {"fullStallTime", Kind::Counter},  // microseconds with all tasks stalled
};

Reading readField(std::string_view key, std::string_view value) {
    return key == "total" ? orNil(parseCount(value)) : orNil(parseFloat(value));
}

/// Reads lines such as "some avg10=0.05 avg60=0.13 avg300=0.13 total=2219839".
SampledObject readResourcePressure(const KernelFolders& folders, const std::string& resource) {
    constexpr std::array<std::string_view, 4> keys{"avg10", "avg60", "avg300", "total"};
    SampledObject pressure{resource, std::vector<Reading>(2 * keys.size())};
    for (const std::string& line : readLines(folders.proc / "pressure" / resource)) {
        const Fields fields = splitFields(line);
        if (fields.empty() || (fields[0] != "some" && fields[0] != "full")) {
            continue;
        }
        const std::size_t first = fields[0] == "some" ? 0 : keys.size();
        for (const std::string_view field : fields) {
            const auto [name, value] = splitPair(field, '=');
            const auto* const key = std::find(keys.begin(), keys.end(), name);
            if (key != keys.end()) {
                pressure.readings[first + static_cast<std::size_t>(key - keys.begin())] =
                    readField(name, value);
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

constinit const KernelClass pressureClass{"Pressure", types, readPressure};

}  // namespace VorNode
