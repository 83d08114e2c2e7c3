#include <string_view>

#include "counters/KernelClasses.h"
#include "counters/KernelText.h"

namespace VorNode {

namespace {

constexpr ValueType types[]{
    {"rxBytes", Kind::Counter, "bytes", "bytes received"},
    {"rxDropped", Kind::Counter, "packets", "received packets dropped"},
    {"rxErrors", Kind::Counter, "errors", "receive errors"},
    {"rxPackets", Kind::Counter, "packets", "packets received"},
    {"speed", Kind::Gauge, "Mbit/s", "speed of the link, from `/sys/class/net/<interface>/speed`"},
    {"txBytes", Kind::Counter, "bytes", "bytes sent"},
    {"txDropped", Kind::Counter, "packets", "packets dropped instead of sent"},
    {"txErrors", Kind::Counter, "errors", "send errors"},
    {"txPackets", Kind::Counter, "packets", "packets sent"},
};

/// Nil for an interface that has no speed: reading fails, or gives -1.
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
        sample.push_back({std::string(interface.name),
                          {{"rxBytes", counts[0]},
                           {"rxPackets", counts[1]},
                           {"rxErrors", counts[2]},
                           {"rxDropped", counts[3]},
                           {"txBytes", counts[8]},
                           {"txPackets", counts[9]},
                           {"txErrors", counts[10]},
                           {"txDropped", counts[11]},
                           {"speed", readSpeed(folders, interface.name)}}});
    }
    return sample;
}

}  // namespace

constinit const KernelClass networkInterfaceClass{
    "NetworkInterface", "each network interface, from `/proc/net/dev`", types, readNetworkInterfaces};

}  // namespace VorNode
