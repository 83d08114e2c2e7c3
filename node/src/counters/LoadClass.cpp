#include "counters/KernelClasses.h"
#include "counters/KernelText.h"

namespace VorNode {

namespace {

constexpr ValueType types[]{
    {"average1", Kind::Gauge},   // tasks running or waiting for CPU or disk, mean of 1 minute
    {"average5", Kind::Gauge},   // the same of 5 minutes
    {"average15", Kind::Gauge},  // the same of 15 minutes
    {"runnable", Kind::Gauge},   // scheduling entities running or ready to run
    {"entities", Kind::Gauge},   // scheduling entities that exist
};

Sample readLoad(const KernelFolders& folders) {
    for (const std::string& line : readLines(folders.proc / "loadavg")) {
        const Fields fields = splitFields(line);
        if (fields.size() < 4) {
            continue;
        }
        const auto average1 = parseFloat(fields[0]);
        const auto average5 = parseFloat(fields[1]);
        const auto average15 = parseFloat(fields[2]);
        const auto [runnableText, entitiesText] = splitPair(fields[3], '/');
        const auto runnable = parseCount(runnableText);
        const auto entities = parseCount(entitiesText);
        if (average1 && average5 && average15 && runnable && entities) {
            return {{onlyObject, {*average1, *average5, *average15, *runnable, *entities}}};
        }
    }
    return {};
}

}  // namespace

constinit const KernelClass loadClass{"Load", types, readLoad};

}  // namespace VorNode
