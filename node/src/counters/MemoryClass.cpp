#include <algorithm>

#include "counters/KernelClasses.h"
#include "counters/KernelText.h"

namespace VorNode {

namespace {

constexpr ValueType types[]{
    {"available", Kind::Gauge, "kB", "memory that programs can get without swapping"},
    {"buffers", Kind::Gauge, "kB", "memory in block device buffers"},
    {"cached", Kind::Gauge, "kB", "memory that holds contents of files"},
    {"dirty", Kind::Gauge, "kB", "memory that waits to be written to disk"},
    {"free", Kind::Gauge, "kB", "memory in no use at all"},
    {"swapFree", Kind::Gauge, "kB", "swap space that is not used"},
    {"swapTotal", Kind::Gauge, "kB", "swap space"},
    {"total", Kind::Gauge, "kB", "memory that the kernel can use"},
    {"usedHundredthsOfPercent", Kind::Gauge, "0.01 %", "share of `total` that is not `available`"},
};

struct Name {
    std::string_view kernel;
    std::string_view type;
};

constexpr Name names[]{{"MemTotal", "total"},    {"MemFree", "free"},  {"MemAvailable", "available"},
                       {"Buffers", "buffers"},   {"Cached", "cached"}, {"SwapTotal", "swapTotal"},
                       {"SwapFree", "swapFree"}, {"Dirty", "dirty"}};

Reading usedShare(const Readings& readings) {
    const auto numberOf = [&readings](std::string_view type) {
        const auto reading = readings.find(type);
        return reading == readings.end() ? nullptr : std::get_if<std::uint64_t>(&reading->second);
    };
    const auto* const total = numberOf("total");
    const auto* const available = numberOf("available");
    if (total == nullptr || available == nullptr || *available > *total) {
        return Nil{};
    }
    return share(*total - *available, *total);
}

Sample readMemory(const KernelFolders& folders) {
    const auto lines = readLines(folders.proc / "meminfo");
    if (lines.empty()) {
        return {};
    }
    Readings readings;
    for (const std::string& line : lines) {
        const NamedLine entry = splitNamedLine(line);
        const auto* const name = std::find_if(std::begin(names), std::end(names), [&](const Name& candidate) {
            return candidate.kernel == entry.name;
        });
        if (name != std::end(names) && !entry.fields.empty()) {
            readings[name->type] = orNil(parseCount(entry.fields[0]));
        }
    }
    readings["usedHundredthsOfPercent"] = usedShare(readings);
    return {{onlyObject, readings}};
}

}  // namespace

constinit const KernelClass memoryClass{"Memory", "the machine, from `/proc/meminfo`", types, readMemory};

}  // namespace VorNode
