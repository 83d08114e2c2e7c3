// What is found wrong with the input before the node starts.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "InputError.h"

namespace VorNode {

/// Collects faults, which refuse the input, and warnings, so that people hear of all of them at once. Each
/// text names the place, the finding and what to do. Belongs to the start; one thread.
class Findings {
  public:
    /// Runs the step; what it refuses is a fault.
    template <class StepT>
    void collect(StepT step) {
        try {
            step();
        } catch (const InputError& fault) {
            _faults.emplace_back(fault.what());
        }
    }

    void refuse(const InputError& fault) { _faults.emplace_back(fault.what()); }
    void warn(const InputError& finding) { _warnings.emplace_back(finding.what()); }

    const std::vector<std::string>& faults() const { return _faults; }
    const std::vector<std::string>& warnings() const { return _warnings; }

    /// Throws the faults as one `InputError`, each in a line of its own.
    void throwFaults() const {
        std::string text;
        for (const std::string& fault : _faults) {
            text.append(text.empty() ? "" : "\n").append(fault);
        }
        if (!text.empty()) {
            throw InputError(text);
        }
    }

  private:
    std::vector<std::string> _faults;
    std::vector<std::string> _warnings;
};

}  // namespace VorNode
