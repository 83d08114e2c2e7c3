#include "model/JobWarnings.h"

#include <algorithm>
#include <string>

#include "Findings.h"
#include "model/ClassPaths.h"
#include "model/Model.h"

namespace VorNode {

namespace {

using namespace std::chrono_literals;

/// Reports of a minute or less have names that tell the minute only.
constexpr std::chrono::seconds shortPeriod = 1min;

std::string lengthOf(const MeasurementJob& job) {
    return std::to_string(job.granularityPeriod.count()) + " s";
}

void warn(const Model& model, const MeasurementJob& job, const std::string& attribute,
          const std::string& text, Findings& findings) {
    findings.warn(model.source().finding(job.dn, attribute, "job " + job.id + ": " + text));
}

void warnOfUnannouncedPeriod(const Model& model, const MeasurementJob& job, Findings& findings) {
    const auto capabilities = model.objectsOf(capabilitiesClass);
    const AttributeValues announced =
        capabilities.empty() ? AttributeValues{} : model.read(capabilities.front(), "supportedMeasJobGps");
    const AttributeValues own = model.read(job.dn, "granularityPeriod");
    if (!announced.empty() && std::find(announced.begin(), announced.end(), own.at(0)) == announced.end()) {
        warn(model, job, "granularityPeriod",
             "clients are not told of its period of " + lengthOf(job) +
                 "; add its number to supportedMeasJobGps, or give it one of those",
             findings);
    }
}

void warnOfSeveralPeriodsInAReport(const Model& model, const MeasurementJob& job, Findings& findings) {
    if (job.granularityPeriod < shortPeriod) {
        warn(model, job, "granularityPeriod",
             "has a period of " + lengthOf(job) +
                 ": its reports hold several periods with one end, of which collectors keep one; write 3 (1 "
                 "min) or more",
             findings);
    }
}

/// Without the capability the component does not look at groups.
std::string groupOf(const Model& model, const MeasurementJob& job) {
    const ClassDefinition* capabilities = model.findClass(capabilitiesClass);
    const bool hasGroups = capabilities != nullptr && capabilities->find("jobGroupingSupport") != nullptr;
    return hasGroups ? model.readSingle<std::string>(job.dn, "jobGroup").value_or("") : "";
}

bool shareNames(const Model& model, const MeasurementJob& one, const MeasurementJob& other) {
    return one.granularityPeriod != other.granularityPeriod && one.granularityPeriod <= shortPeriod &&
           other.granularityPeriod <= shortPeriod && groupOf(model, one) == groupOf(model, other);
}

void warnOfSharedNames(const Model& model, const std::vector<MeasurementJob>& jobs, std::size_t index,
                       Findings& findings) {
    const MeasurementJob& job = jobs[index];
    const auto end = jobs.begin() + static_cast<std::ptrdiff_t>(index);
    const auto other = std::find_if(
        jobs.begin(), end, [&](const MeasurementJob& earlier) { return shareNames(model, job, earlier); });
    if (other != end) {
        warn(model, job, "jobGroup",
             "its period is " + lengthOf(job) + ", that of job " + other->id + " " + lengthOf(*other) +
                 ", and both have the same group or none: their reports get one name, and only the first to "
                 "be written is published; give them different groups",
             findings);
    }
}

struct Capability {
    const char* name;
    AttributeType type;
    Arity arity;
    const char* form;
};

constexpr Capability capabilities[]{
    {"maxNoOfPmFiles", AttributeType::Uint16, Arity::Single, R"(type="uint16")"},
    {"fileRPSupported", AttributeType::Bool, Arity::Single, R"(type="bool")"},
    {"jobGroupingSupport", AttributeType::Bool, Arity::Single, R"(type="bool")"},
    {"supportedRopPeriods", AttributeType::Enum, Arity::Sequence, R"(type="enum" seq="true")"},
    {"supportedCompressionTypes", AttributeType::Enum, Arity::Sequence, R"(type="enum" seq="true")"},
    {"producesUtcRopFiles", AttributeType::Bool, Arity::Single, R"(type="bool")"},
};

}  // namespace

void warnOfJobs(const Model& model, const std::vector<MeasurementJob>& jobs, Findings& findings) {
    for (std::size_t i = 0; i < jobs.size(); ++i) {
        warnOfUnannouncedPeriod(model, jobs[i], findings);
        warnOfSeveralPeriodsInAReport(model, jobs[i], findings);
        warnOfSharedNames(model, jobs, i, findings);
    }
}

void warnOfCapabilities(const Model& model, Findings& findings) {
    const ClassDefinition* definition = model.findClass(capabilitiesClass);
    if (definition == nullptr) {
        return;
    }
    for (const Capability& capability : capabilities) {
        const AttributeDefinition* attribute = definition->find(capability.name);
        const std::string name = std::string("attribute ") + capability.name;
        if (attribute != nullptr &&
            (attribute->type != capability.type || attribute->arity != capability.arity)) {
            findings.warn(model.source().finding(
                capabilitiesClass, capability.name,
                name + " is not what the component writes, which will not start; write " + capability.form));
        }
    }
    if (definition->find("maxNoOfPmFiles") == nullptr) {
        findings.warn(model.source().finding(
            capabilitiesClass, "",
            R"(has no attribute maxNoOfPmFiles: the component will not start; add it with type="uint16")"));
    }
}

}  // namespace VorNode
