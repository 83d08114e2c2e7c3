#pragma once

namespace VorNode {

/// Does what the arguments ask for; the status that the process ends with. Sets the process's signals, umask
/// and missing standard descriptors, and may end the process when a signal arrives.
int runProgram(int argc, const char* const* argv);

}  // namespace VorNode
