#include <algorithm>

#include "counters/KernelClasses.h"
#include "counters/KernelText.h"

namespace VorNode {

namespace {

constexpr ValueType types[]{
    {"averageWaitMicroseconds", Kind::Counter, "microseconds",
     "time that a completed read or write took, mean"},
    {"ioTime", Kind::Counter, "ms", "time with reads or writes in progress"},
    {"readBytes", Kind::Counter, "bytes", "bytes read"},
    {"readTime", Kind::Counter, "ms", "time that reads took, summed over them"},
    {"reads", Kind::Counter, "reads", "reads completed"},
    {"writeTime", Kind::Counter, "ms", "time that writes took, summed over them"},
    {"writes", Kind::Counter, "writes", "writes completed"},
    {"writtenBytes", Kind::Counter, "bytes", "bytes written"},
};

Readings readingsOf(const std::vector<std::uint64_t>& counts) {
    constexpr std::uint64_t sectorSize = 512;  // of these counters, whatever the disk's own
    constexpr std::uint64_t microsecondsPerMillisecond = 1000;
    const auto reads = counts[0], readSectors = counts[2], readTime = counts[3];
    const auto writes = counts[4], writtenSectors = counts[6], writeTime = counts[7];
    const auto ioTime = counts[9];
    return {
        {"reads", reads},
        {"readBytes", readSectors * sectorSize},
        {"readTime", readTime},
        {"writes", writes},
        {"writtenBytes", writtenSectors * sectorSize},
        {"writeTime", writeTime},
        {"ioTime", ioTime},
        {"averageWaitMicroseconds", Ratio{readTime + writeTime, reads + writes, microsecondsPerMillisecond}}};
}

Sample readDisks(const KernelFolders& folders) {
    constexpr std::size_t keys = 3, columns = 11;
    Sample sample;
    for (const std::string& line : readLines(folders.proc / "diskstats")) {
        const Fields fields = splitFields(line);
        if (fields.size() < keys + columns) {
            continue;
        }
        const auto counts = parseCounts(std::span(fields).subspan(keys, columns));
        if (counts.empty()) {
            continue;
        }
        // Idle loop devices and RAM disks would only fill the report.
        const bool wasUsed =
            std::any_of(counts.begin(), counts.end(), [](std::uint64_t count) { return count > 0; });
        sample.push_back({std::string(fields[keys - 1]), readingsOf(counts), wasUsed});
    }
    return sample;
}

}  // namespace

constinit const KernelClass diskClass{
    "Disk", "each disk and partition that was ever used, from `/proc/diskstats`", types, readDisks};

}  // namespace VorNode
