#include <algorithm>

#include "counters/KernelClasses.h"
#include "counters/KernelText.h"

namespace VorNode {

namespace {

// Each an array: how often the softirq was served by CPU 0, CPU 1, and so on. The names are the kernel's.
constexpr ValueType types[]{
    {"HI", Kind::Counter},      {"TIMER", Kind::Counter}, {"NET_TX", Kind::Counter},
    {"NET_RX", Kind::Counter},  {"BLOCK", Kind::Counter}, {"IRQ_POLL", Kind::Counter},
    {"TASKLET", Kind::Counter}, {"SCHED", Kind::Counter}, {"HRTIMER", Kind::Counter},
    {"RCU", Kind::Counter},
};

Sample readSoftirqs(const KernelFolders& folders) {
    const auto lines = readLines(folders.proc / "softirqs");
    if (lines.empty()) {
        return {};
    }
    const std::size_t processors = splitFields(lines[0]).size();
    SampledObject softirqs{onlyObject, std::vector<Reading>(std::size(types))};
    for (const std::string& line : lines) {
        const NamedLine softirq = splitNamedLine(line);
        const auto* const type =
            std::find_if(std::begin(types), std::end(types),
                         [&](const ValueType& candidate) { return candidate.name == softirq.name; });
        const auto counts = parseCounts(softirq.fields);
        if (type != std::end(types) && counts.size() == processors) {
            softirqs.readings[static_cast<std::size_t>(type - types)] = counts;
        }
    }
    return {softirqs};
}

}  // namespace

constinit const KernelClass softirqsClass{"Softirqs", types, readSoftirqs};

}  // namespace VorNode
