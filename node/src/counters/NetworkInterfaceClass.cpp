#include <string_view>

#include "counters/KernelClasses.h"
#include "counters/KernelText.h"

namespace VorNode {

namespace {

constexpr ValueType types[]{
    {"rxBytes", Kind::Counter},    // bytes received
    {"rxPackets", Kind::Counter},  // packets received
    {"rxErrors", Kind::Counter},   // receive errors
    {"rxDropped", Kind::Counter},  // received packets dropped
    {"txBytes", Kind::Counter},    // bytes sent
    {"txPackets", Kind::Counter},  // packets sent
    {"txErrors", Kind::Counter},   // send errors
    {"txDropped", Kind::Counter},  // packets dropped instead of sent
    {"speed", Kind::Gauge},        // Mbit/s of the link
};

/// In Mbit/s; Nil for an interface that has no speed: reading fails, or gives -1.
Reading readSpeed(const KernelFolders& folders, std::string_view interface) {
    const auto lines = readLines(folders.sys / "class" / "net" / interface / "speed");
    return lines.empty() ? Reading(Nil{}) : orNil(parseCount(lines[0]));
}

Sample readNetworkInterfaces(const KernelFolders& folders) {
    constexpr std::size_t columns = 16;
    Sample sample;
    for (const std::string& line : readLines(folders.proc / "net" / "dev")) {
        const NamedLine interface = splitNamedLine(line);
        const auto counts = parseCounts(interface.fields);
        if (counts.size() < columns) {
            continue;
        }
        SampledObject& object = sample.emplace_back();
        object.name = interface.name;
        for (const std::size_t column : {0U, 1U, 2U, 3U, 8U, 9U, 10U, 11U}) {
            object.readings.emplace_back(counts[column]);
        }
        object.readings.push_back(readSpeed(folders, interface.name));
    }
    return sample;
}

}  // namespace

constinit const KernelClass networkInterfaceClass{"NetworkInterface", types, readNetworkInterfaces};

}  // namespace VorNode
