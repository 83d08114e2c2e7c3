#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace VorNode {

class Findings;
class Model;

/// One active measurement job of the model, as the PM service runs it.
struct MeasurementJob {
    /// The id of its PmJob object.
    std::string id;
    std::chrono::seconds granularityPeriod{};
    /// The names of the measured classes, as the producer knows them.
    std::vector<std::string> classes;
    /// The PmJob object's dn.
    std::string dn{};
};

/// The jobs of the model whose `jobState` is active, in creation order. One that is not usable is left out,
/// and a fault among the findings names its line and attribute.
std::vector<MeasurementJob> readActiveJobs(const Model& model, Findings& findings);

}  // namespace VorNode
