#include <algorithm>

#include "counters/KernelClasses.h"
#include "counters/KernelText.h"

namespace VorNode {

namespace {

constexpr ValueType types[]{
    {"reads", Kind::Counter},         // reads completed
    {"readBytes", Kind::Counter},     // bytes read
    {"readTime", Kind::Counter},      // ms that reads took, summed over them
    {"writes", Kind::Counter},        // writes completed
    {"writtenBytes", Kind::Counter},  // bytes written
    {"writeTime", Kind::Counter},     // ms that writes took, summed over them
    {"ioTime", Kind::Counter},        // ms with I/O in progress
    {"averageWait", Kind::Counter},   // ms per completed read or write
};

Sample readDisks(const KernelFolders& folders) {
    constexpr std::uint64_t sectorSize = 512;  // of these counters, whatever the disk's own
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
        const auto reads = counts[0], readSectors = counts[2], readTime = counts[3];
        const auto writes = counts[4], writtenSectors = counts[6], writeTime = counts[7];
        const auto ioTime = counts[9];
        SampledObject& disk = sample.emplace_back();
        disk.name = fields[keys - 1];
        disk.readings = {reads,
                         readSectors * sectorSize,
                         readTime,
                         writes,
                         writtenSectors * sectorSize,
                         writeTime,
                         ioTime,
                         Ratio{readTime + writeTime, reads + writes}};
        // Idle loop devices and RAM disks would only fill the report.
        disk.reported =
            std::any_of(counts.begin(), counts.end(), [](std::uint64_t count) { return count > 0; });
    }
    return sample;
}

}  // namespace

constinit const KernelClass diskClass{"Disk", types, readDisks};

}  // namespace VorNode
