#pragma once

#include <filesystem>
#include <string>

#include "framework/Node.h"

namespace VorNode {

/// What `vor-node run` was asked for.
struct RunOptions {
    NodeOptions node;
    /// "kernel" or "recorded:FILE".
    std::string counters;
    std::filesystem::path proc;
    std::filesystem::path sys;
    /// Collection phases that publish something before the run ends; 0 for no end.
    unsigned reports = 0;
    /// Show what the component announces, and end.
    bool capabilitiesOnly = false;
};

/// Parses the arguments. Throws `InputError` when they are not usable, and `CommandLineDone` when there is
/// nothing to run: help or the version was printed.
RunOptions parseCommandLine(int argc, const char* const* argv);

class CommandLineDone {};

}  // namespace VorNode
