#include "framework/NodeInput.h"

#include <string>

#include "Findings.h"
#include "counters/MeasurementProducer.h"
#include "model/ClassPaths.h"
#include "model/JobWarnings.h"
#include "model/ModelFile.h"

namespace VorNode {

namespace {

/// The objects without which the component does not start.
constexpr const char* neededClasses[]{elementClass, pmClass, capabilitiesClass};

void checkNeededObjects(const Model& model, Findings& findings) {
    for (const std::string classPath : neededClasses) {
        if (model.objectsOf(classPath).empty()) {
            findings.refuse(model.source().finding(
                "", "", "has no object of the class " + classPath + "; write an <Object> of it"));
        }
    }
}

std::vector<MeasurementJob> readJobs(const Model& model, Findings& findings) {
    const std::size_t faults = findings.faults().size();
    std::vector<MeasurementJob> jobs = readActiveJobs(model, findings);
    if (jobs.empty() && findings.faults().size() == faults) {
        findings.refuse(
            model.source().finding("", "", "has no active job; write a PmJob object whose jobState is 1"));
    }
    return jobs;
}

}  // namespace

NodeInput readNodeInput(const std::filesystem::path& configuration, const std::filesystem::path& model,
                        Findings& findings) {
    NodeInput input;
    input.configurationFile = configuration;
    input.configuration = loadNodeConfiguration(configuration, findings);
    findings.collect([&] { input.model = loadModel(model); });
    if (input.model) {
        checkNeededObjects(*input.model, findings);
        warnOfCapabilities(*input.model, findings);
        input.jobs = readJobs(*input.model, findings);
        warnOfJobs(*input.model, input.jobs, findings);
    }
    return input;
}

void checkMeasuring(const NodeInput& input, MeasurementProducer& producer, Findings& findings) {
    std::vector<std::string> ids;
    for (const MeasurementJob& job : input.jobs) {
        ids.push_back(job.id);
        try {
            producer.startJob(job.id, job.classes);
        } catch (const InputError& fault) {
            findings.refuse(input.model->source().finding(job.dn, "measuredClasses", fault.what()));
        }
    }
    if (input.configuration.pmServiceVersions == PmVersions::One && producer.needsVersion2()) {
        findings.warn({input.configurationFile, input.configuration.pmServiceVersionsLine,
                       "pmServiceVersions is 1: reports leave out arrays, and values that could not be "
                       "measured; write 2, or 1 2"});
    }
    for (const std::string& warning : producer.warnings(ids)) {
        findings.warn(InputError(warning));
    }
}

}  // namespace VorNode
