#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace VorNode {

/// What the command prints on its standard output, without the line feed at its end. It is found on the
/// search path, begins with an empty signal mask and default dispositions, and ends with the calling thread.
/// Throws `std::runtime_error` that tells what happened when it cannot be started, fails, or takes longer
/// than `limit`: it is killed then. The application's thread.
std::string answerOf(const std::vector<std::string>& command, std::chrono::milliseconds limit);

}  // namespace VorNode
