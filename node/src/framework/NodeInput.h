#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include "framework/NodeConfiguration.h"
#include "model/MeasurementJob.h"
#include "model/Model.h"

namespace VorNode {

class Findings;
class MeasurementProducer;

/// What a node is made from.
struct NodeInput {
    std::filesystem::path configurationFile;
    NodeConfiguration configuration;
    /// Null when the file was refused.
    std::unique_ptr<Model> model;
    /// The active ones.
    std::vector<MeasurementJob> jobs;
};

/// Reads the two files, and checks each and both together. What is wrong, and what will surprise, is among
/// the findings afterwards. Called at start-up, on the application's thread.
NodeInput readNodeInput(const std::filesystem::path& configuration, const std::filesystem::path& model,
                        Findings& findings);

/// Checks whether the producer can measure what the jobs ask for.
void checkMeasuring(const NodeInput& input, MeasurementProducer& producer, Findings& findings);

}  // namespace VorNode
