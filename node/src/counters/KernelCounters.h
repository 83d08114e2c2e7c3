// The producer that measures the machine it runs on.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "counters/KernelSample.h"
#include "counters/MeasurementProducer.h"

namespace VorNode {

/// Measures by the counters of the Linux kernel, in the classes of `kernelClasses()`. Owned by the
/// application, used by the PM service's scheduler thread. Its jobs do not depend on its life.
class KernelCounters final : public MeasurementProducer {
  public:
    /// Reads the kernel's file systems at `proc` and `sys`. What is missing there is not measured.
    explicit KernelCounters(std::filesystem::path proc = "/proc", std::filesystem::path sys = "/sys");

    std::unique_ptr<JobMeasurement> startJob(const std::string& jobId,
                                             const std::vector<std::string>& classes) override;

    /// Warns of file systems in which no class finds anything.
    std::vector<std::string> warnings(const std::vector<std::string>& jobIds) const override;

  private:
    KernelFolders _folders;
};

}  // namespace VorNode
