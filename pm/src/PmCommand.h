#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace VorPm {

/// How a command ended, and what it had printed by then.
struct PmCommandResult {
    /// The command could not be started.
    static constexpr int notStarted = 72;
    /// The command was ended because its time was over.
    static constexpr int timeOver = 137;
    /// The command has ended, but the system or another thread of the process took its status away.
    static constexpr int lost = -1;

    /// The exit status, one of the above, or 256 plus the signal that ended the command.
    int status = 0;
    std::string output;
    std::string errors;
};

/// Runs a command that is found on the search path, and waits until it ends; after `limit` it is killed, with
/// the children that stayed in its process group. What it leaves running in the background is not waited for.
///
/// The command begins with default dispositions of all signals, an empty signal mask, a process group of its
/// own and no open files but the standard ones. It does not outlive the calling thread, and so not the
/// process.
///
/// Any thread. Throws `Poco::SystemException` when no pipe or no process can be made.
PmCommandResult runCommand(const std::string& name, const std::vector<std::string>& arguments,
                           std::chrono::milliseconds limit);

}  // namespace VorPm
