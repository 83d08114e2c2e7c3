// The error for input that cannot be used: command line, configuration, model, recorded counters.
#pragma once

#include <stdexcept>
#include <string>

namespace VorNode {

/// Input is not usable. The text names the file, the line where it is known, the fault and the remedy.
class InputError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;

    /// Line 0 stands for a line that is not known.
    InputError(const std::string& file, int line, const std::string& text)
        : std::runtime_error(file + (line > 0 ? ":" + std::to_string(line) : "") + ": " + text) {}
};

}  // namespace VorNode
