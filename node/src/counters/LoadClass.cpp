#include "counters/KernelClasses.h"
#include "counters/KernelText.h"

namespace VorNode {

namespace {

constexpr ValueType types[]{
    {"average15Hundredths", Kind::Gauge, "0.01 tasks",
     "tasks that run or wait for CPU or disk, mean of 15 minutes"},
    {"average1Hundredths", Kind::Gauge, "0.01 tasks",
     "tasks that run or wait for CPU or disk, mean of 1 minute"},
    {"average5Hundredths", Kind::Gauge, "0.01 tasks",
     "tasks that run or wait for CPU or disk, mean of 5 minutes"},
    {"entities", Kind::Gauge, "entities", "scheduling entities that exist"},
    {"runnable", Kind::Gauge, "entities", "scheduling entities that run or are ready to run"},
};

Sample readLoad(const KernelFolders& folders) {
    for (const std::string& line : readLines(folders.proc / "loadavg")) {
        const Fields fields = splitFields(line);
        if (fields.size() < 4) {
            continue;
        }
        const auto average1 = parseHundredths(fields[0]);
        const auto average5 = parseHundredths(fields[1]);
        const auto average15 = parseHundredths(fields[2]);
        const auto [runnableText, entitiesText] = splitPair(fields[3], '/');
        const auto runnable = parseCount(runnableText);
        const auto entities = parseCount(entitiesText);
        if (average1 && average5 && average15 && runnable && entities) {
            return {{onlyObject,
                     {{"average1Hundredths", *average1},
                      {"average5Hundredths", *average5},
                      {"average15Hundredths", *average15},
                      {"runnable", *runnable},
                      {"entities", *entities}}}};
        }
    }
    return {};
}

}  // namespace

constinit const KernelClass loadClass{"Load", "the machine, from `/proc/loadavg`", types, readLoad};

}  // namespace VorNode
