#include <algorithm>
#include <array>

#include "counters/KernelClasses.h"
#include "counters/KernelText.h"

namespace VorNode {

namespace {

constexpr ValueType types[]{
    {"total", Kind::Gauge},      // kB the kernel can use
    {"free", Kind::Gauge},       // kB in no use at all
    {"available", Kind::Gauge},  // kB that programs can get without swapping
    {"buffers", Kind::Gauge},    // kB of block device buffers
    {"cached", Kind::Gauge},     // kB of file contents
    {"swapTotal", Kind::Gauge},  // kB of swap space
    {"swapFree", Kind::Gauge},   // kB of it unused
    {"dirty", Kind::Gauge},      // kB waiting to be written to disk
    {"usedRatio", Kind::Gauge},  // % of the total that is not available
};

/// What the kernel calls the types, in their order, but for the ratio.
constexpr std::array<std::string_view, std::size(types) - 1> names{
    "MemTotal", "MemFree", "MemAvailable", "Buffers", "Cached", "SwapTotal", "SwapFree", "Dirty"};

Sample readMemory(const KernelFolders& folders) {
    const auto lines = readLines(folders.proc / "meminfo");
    if (lines.empty()) {
        return {};
    }
    std::vector<Reading> readings(std::size(types));
    for (const std::string& line : lines) {
        const NamedLine entry = splitNamedLine(line);
        const auto* const name = std::find(names.begin(), names.end(), entry.name);
        if (name != names.end() && !entry.fields.empty()) {
            readings[static_cast<std::size_t>(name - names.begin())] = orNil(parseCount(entry.fields[0]));
        }
    }
    const auto* const total = std::get_if<std::uint64_t>(&readings[0]);
    const auto* const available = std::get_if<std::uint64_t>(&readings[2]);
    if (total && available && *available <= *total) {
        readings.back() = percentage(*total - *available, *total);
    }
    return {{onlyObject, readings}};
}

}  // namespace

constinit const KernelClass memoryClass{"Memory", types, readMemory};

}  // namespace VorNode
