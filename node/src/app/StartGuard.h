#pragma once

#include <thread>

#include "app/Notice.h"

namespace VorNode {

class Console;
class EndingSignals;

/// Ends the process with status 1 when a signal arrives while the node starts, which may hang in a file or in
/// a command: the processes below this one are killed, and nothing is unwound, for nothing is there yet to be
/// finished. Owned by the application.
class StartGuard {
  public:
    /// The signals and the console outlive the guard.
    StartGuard(const EndingSignals& signals, Console& console);
    /// Ends the guard. Does not return when it has seen a signal.
    ~StartGuard();
    StartGuard(const StartGuard&) = delete;
    StartGuard& operator=(const StartGuard&) = delete;

    /// The node runs: signals are left to others from now on. Does not return when the guard has seen one.
    void release();

  private:
    /// The guard's thread.
    void watch();

    const EndingSignals& _signals;
    Console& _console;
    Notice _released;
    std::thread _thread{&StartGuard::watch, this};
};

}  // namespace VorNode
