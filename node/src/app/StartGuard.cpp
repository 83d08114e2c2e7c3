#include "app/StartGuard.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <vector>

#include <sys/types.h>
#include <unistd.h>

#include "app/Console.h"
#include "app/EndingSignals.h"
#include "app/ExitStatus.h"

namespace VorNode {

namespace {

/// Children, their children, and so on.
void collectDescendants(const std::string& process, std::vector<pid_t>& descendants) {
    std::error_code gone;
    for (const auto& thread : std::filesystem::directory_iterator("/proc/" + process + "/task", gone)) {
        std::ifstream children(thread.path() / "children");
        for (pid_t child = 0; children >> child;) {
            descendants.push_back(child);
            collectDescendants(std::to_string(child), descendants);
        }
    }
}

void killDescendants() {
    std::vector<pid_t> descendants;
    collectDescendants("self", descendants);
    for (const pid_t process : descendants) {
        ::kill(process, SIGKILL);
    }
}

}  // namespace

StartGuard::StartGuard(const EndingSignals& signals, Console& console)
    : _signals(signals), _console(console) {}

StartGuard::~StartGuard() {
    release();
}

void StartGuard::release() {
    _released.set();
    if (_thread.joinable()) {
        _thread.join();
    }
}

void StartGuard::watch() {
    waitForAny({_signals.descriptor(), _released.descriptor()});
    if (canBeRead(_released.descriptor())) {
        return;
    }
    _console.writeError("vor-node: ended by " + _signals.take() + " before it was running");
    _console.close();
    killDescendants();
    ::_exit(failedRunning);
}

}  // namespace VorNode
