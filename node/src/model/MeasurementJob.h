#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace VorNode {

class Model;

/// One active measurement job of the model, as the PM service runs it.
struct MeasurementJob {
    /// The id of its PmJob object.
    std::string id;
    std::chrono::seconds granularityPeriod{};
    /// The names of the measured classes, as the producer knows them.
    std::vector<std::string> classes;
};

/// The jobs of the model whose `jobState` is active, in creation order. Throws `InputError` naming the job
/// and the attribute when one is not usable.
std::vector<MeasurementJob> readActiveJobs(const Model& model);

}  // namespace VorNode
