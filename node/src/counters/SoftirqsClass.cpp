#include <algorithm>

#include "counters/KernelClasses.h"
#include "counters/KernelText.h"

namespace VorNode {

namespace {

// The names are the kernel's.
constexpr ValueType types[]{
    {"BLOCK", Kind::Counter, "softirqs", "completed block requests"},
    {"HI", Kind::Counter, "softirqs", "tasklets of high priority"},
    {"HRTIMER", Kind::Counter, "softirqs", "high-resolution timers"},
    {"IRQ_POLL", Kind::Counter, "softirqs", "polling of block devices"},
    {"NET_RX", Kind::Counter, "softirqs", "receiving from the network"},
    {"NET_TX", Kind::Counter, "softirqs", "sending to the network"},
    {"RCU", Kind::Counter, "softirqs", "read-copy-update callbacks"},
    {"SCHED", Kind::Counter, "softirqs", "balancing of tasks between CPUs"},
    {"TASKLET", Kind::Counter, "softirqs", "tasklets"},
    {"TIMER", Kind::Counter, "softirqs", "timers"},
};

/// The CPUs that the heading line names, such as "CPU0 CPU1".
Sample readProcessors(std::string_view heading) {
    constexpr std::string_view prefix = "CPU";
    Sample processors;
    for (const std::string_view field : splitFields(heading)) {
        processors.push_back({std::string(field.substr(std::min(prefix.size(), field.size()))), {}, false});
    }
    return processors;
}

Sample readSoftirqs(const KernelFolders& folders) {
    const auto lines = readLines(folders.proc / "softirqs");
    if (lines.empty()) {
        return {};
    }
    Sample processors = readProcessors(lines[0]);
    for (const std::string& line : lines) {
        const NamedLine softirq = splitNamedLine(line);
        const auto* const type =
            std::find_if(std::begin(types), std::end(types),
                         [&](const ValueType& candidate) { return candidate.name == softirq.name; });
        const auto counts = parseCounts(softirq.fields);
        if (type == std::end(types) || counts.size() != processors.size()) {
            continue;
        }
        for (std::size_t i = 0; i < counts.size(); ++i) {
            processors[i].readings[type->name] = counts[i];
            // The kernel lists CPUs that the machine could have, too.
            processors[i].reported |= counts[i] > 0;
        }
    }
    return processors;
}

}  // namespace

constinit const KernelClass softirqsClass{
    "Softirqs", "each CPU that ever served a softirq, from `/proc/softirqs`", types, readSoftirqs};

}  // namespace VorNode
