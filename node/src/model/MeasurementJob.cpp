#include "model/MeasurementJob.h"

#include <array>

#include "Findings.h"
#include "model/ClassPaths.h"
#include "model/Dn.h"
#include "model/Model.h"

namespace VorNode {

namespace {

constexpr std::int16_t activeState = 1;

using namespace std::chrono_literals;
/// By the number that the model gives them, from 1.
constexpr std::array<std::chrono::seconds, 9> periods{10s, 30s, 1min, 5min, 15min, 30min, 1h, 12h, 24h};

std::chrono::seconds readPeriod(const Model& model, const std::string& dn) {
    const auto number = model.readSingle<std::int16_t>(dn, "granularityPeriod");
    if (!number || *number < 1 || *number > static_cast<std::int16_t>(periods.size())) {
        throw model.source().finding(
            dn, "granularityPeriod",
            "job " + dn + ": granularityPeriod " +
                (number ? "is " + std::to_string(*number) : "has no enum value") +
                "; write 1 (10 s), 2 (30 s), 3 (1 min), 4 (5 min), 5 (15 min), 6 (30 min), 7 (1 h), "
                "8 (12 h) or 9 (24 h) into the model");
    }
    return periods[static_cast<std::size_t>(*number - 1)];
}

std::vector<std::string> readClasses(const Model& model, const std::string& dn) {
    std::vector<std::string> classes;
    for (const AttributeValue& value : model.read(dn, "measuredClasses")) {
        if (const auto* name = std::get_if<std::string>(&value)) {
            classes.push_back(*name);
        }
    }
    if (classes.empty()) {
        throw model.source().finding(
            dn, "measuredClasses",
            "job " + dn + ": measuredClasses names no class; write at least one <Value>, such as " +
                "Processor, into the model");
    }
    return classes;
}

}  // namespace

std::vector<MeasurementJob> readActiveJobs(const Model& model, Findings& findings) {
    std::vector<MeasurementJob> jobs;
    for (const std::string& dn : model.objectsOf(jobClass)) {
        if (model.readSingle<std::int16_t>(dn, "jobState") == activeState) {
            findings.collect([&] {
                jobs.push_back({lastIdOf(dn), readPeriod(model, dn), readClasses(model, dn), dn});
            });
        }
    }
    return jobs;
}

}  // namespace VorNode
