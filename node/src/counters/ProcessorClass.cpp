#include <numeric>
#include <string_view>

#include <unistd.h>

#include "counters/KernelClasses.h"
#include "counters/KernelText.h"

namespace VorNode {

namespace {

constexpr ValueType types[]{
    {"userTime", Kind::Counter},     // ms in user mode, guests included
    {"niceTime", Kind::Counter},     // ms in user mode at low priority
    {"systemTime", Kind::Counter},   // ms in kernel mode
    {"idleTime", Kind::Counter},     // ms without work
    {"ioWaitTime", Kind::Counter},   // ms without work while I/O was outstanding
    {"irqTime", Kind::Counter},      // ms serving interrupts
    {"softirqTime", Kind::Counter},  // ms serving softirqs
    {"stealTime", Kind::Counter},    // ms taken by the hypervisor for others
    {"utilisation", Kind::Counter},  // % of the time neither idle nor waiting for I/O
};

Sample readProcessors(const KernelFolders& folders) {
    static const auto ticksPerSecond = static_cast<std::uint64_t>(::sysconf(_SC_CLK_TCK));
    constexpr std::string_view prefix = "cpu";
    constexpr std::size_t states = 8, idle = 3, ioWait = 4;
    Sample sample;
    for (const std::string& line : readLines(folders.proc / "stat")) {
        const Fields fields = splitFields(line);
        if (fields.size() <= states || !fields[0].starts_with(prefix)) {
            continue;
        }
        // The line without a number is the sum of all processors.
        const std::string_view number = fields[0].substr(prefix.size());
        const auto ticks = parseCounts(std::span(fields).subspan(1, states));
        if (!parseCount(number) || ticks.empty()) {
            continue;
        }
        SampledObject& processor = sample.emplace_back();
        processor.name = number;
        for (const std::uint64_t count : ticks) {
            processor.readings.emplace_back(count * 1000 / ticksPerSecond);
        }
        const std::uint64_t whole = std::accumulate(ticks.begin(), ticks.end(), std::uint64_t{0});
        processor.readings.emplace_back(percentage(whole - ticks[idle] - ticks[ioWait], whole));
    }
    return sample;
}

}  // namespace

constinit const KernelClass processorClass{"Processor", types, readProcessors};

}  // namespace VorNode
