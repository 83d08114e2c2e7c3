#include <numeric>
#include <string_view>

#include <unistd.h>

#include "counters/KernelClasses.h"
#include "counters/KernelText.h"

namespace VorNode {

namespace {

constexpr ValueType types[]{
    {"idleTime", Kind::Counter, "ms", "time without work"},
    {"ioWaitTime", Kind::Counter, "ms", "time without work while I/O was outstanding"},
    {"irqTime", Kind::Counter, "ms", "time serving interrupts"},
    {"niceTime", Kind::Counter, "ms", "time in user mode at low priority"},
    {"softirqTime", Kind::Counter, "ms", "time serving softirqs"},
    {"stealTime", Kind::Counter, "ms", "time that the hypervisor took for others"},
    {"systemTime", Kind::Counter, "ms", "time in kernel mode"},
    {"userTime", Kind::Counter, "ms", "time in user mode, guests included"},
    {"utilisationHundredthsOfPercent", Kind::Counter, "0.01 %",
     "share of the time neither idle nor waiting for I/O"},
};

/// The types of the columns, as the kernel lists them.
constexpr std::string_view columns[]{"userTime",   "niceTime", "systemTime",  "idleTime",
                                     "ioWaitTime", "irqTime",  "softirqTime", "stealTime"};

Readings readingsOf(const std::vector<std::uint64_t>& ticks) {
    static const auto ticksPerSecond = static_cast<std::uint64_t>(::sysconf(_SC_CLK_TCK));
    constexpr std::size_t idle = 3, ioWait = 4;
    Readings readings;
    for (std::size_t i = 0; i < ticks.size(); ++i) {
        readings[columns[i]] = ticks[i] * 1000 / ticksPerSecond;
    }
    const std::uint64_t whole = std::accumulate(ticks.begin(), ticks.end(), std::uint64_t{0});
    readings["utilisationHundredthsOfPercent"] = share(whole - ticks[idle] - ticks[ioWait], whole);
    return readings;
}

Sample readProcessors(const KernelFolders& folders) {
    constexpr std::string_view prefix = "cpu";
    Sample sample;
    for (const std::string& line : readLines(folders.proc / "stat")) {
        const Fields fields = splitFields(line);
        if (fields.size() <= std::size(columns) || !fields[0].starts_with(prefix)) {
            continue;
        }
        // The line without a number is the sum of all processors.
        const std::string_view number = fields[0].substr(prefix.size());
        const auto ticks = parseCounts(std::span(fields).subspan(1, std::size(columns)));
        if (!parseCount(number) || ticks.empty()) {
            continue;
        }
        sample.push_back({std::string(number), readingsOf(ticks)});
    }
    return sample;
}

}  // namespace

constinit const KernelClass processorClass{"Processor", "each CPU that is online, from `/proc/stat`", types,
                                           readProcessors};

}  // namespace VorNode
