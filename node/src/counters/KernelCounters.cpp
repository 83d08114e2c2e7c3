#include "counters/KernelCounters.h"

#include <algorithm>
#include <utility>

#include "InputError.h"
#include "counters/KernelClasses.h"
#include "counters/KernelDelta.h"

namespace VorNode {

namespace {

/// The measurement of one job over kernel classes.
class KernelJob final : public JobMeasurement {
  public:
    KernelJob(KernelFolders folders, std::vector<const KernelClass*> classes)
        : _folders(std::move(folders)), _classes(std::move(classes)), _samples(_classes.size()) {}

    void begin() override {
        for (std::size_t i = 0; i < _classes.size(); ++i) {
            _samples[i] = _classes[i]->read(_folders);
        }
    }

    MeasurementData cut(Coverage coverage) override {
        MeasurementData data;
        for (std::size_t i = 0; i < _classes.size(); ++i) {
            const Sample before = std::exchange(_samples[i], _classes[i]->read(_folders));
            data.push_back(measureDelta(*_classes[i], before, _samples[i], coverage));
        }
        return data;
    }

  private:
    const KernelFolders _folders;
    const std::vector<const KernelClass*> _classes;
    /// Of each class, what was read when the running period began.
    std::vector<Sample> _samples;
};

const KernelClass& findClass(const std::string& jobId, const std::string& name) {
    std::string known;
    for (const KernelClass* kernelClass : kernelClasses()) {
        if (kernelClass->name == name) {
            return *kernelClass;
        }
        known += (known.empty() ? "" : ", ") + std::string(kernelClass->name);
    }
    throw InputError("job " + jobId + ": no measurement class is named \"" + name + "\"; use some of " +
                     known);
}

bool findsSomething(const Sample& sample) {
    return std::any_of(sample.begin(), sample.end(),
                       [](const SampledObject& object) { return !object.readings.empty(); });
}

}  // namespace

KernelCounters::KernelCounters(std::filesystem::path proc, std::filesystem::path sys)
    : _folders{std::move(proc), std::move(sys)} {}

std::unique_ptr<JobMeasurement> KernelCounters::startJob(const std::string& jobId,
                                                         const std::vector<std::string>& classes) {
    std::vector<const KernelClass*> found;
    found.reserve(classes.size());
    for (const std::string& name : classes) {
        found.push_back(&findClass(jobId, name));
    }
    return std::make_unique<KernelJob>(_folders, std::move(found));
}

std::vector<std::string> KernelCounters::warnings(const std::vector<std::string>& /*jobIds*/) const {
    for (const KernelClass* kernelClass : kernelClasses()) {
        if (findsSomething(kernelClass->read(_folders))) {
            return {};
        }
    }
    return {"there are no counters of the kernel in " + _folders.proc.string() + " and " +
            _folders.sys.string() + "; name the kernel's file systems with --proc and --sys"};
}

}  // namespace VorNode
