#pragma once

#include <string>

#include "Descriptor.h"

namespace VorNode {

/// The signals that end the node: SIGINT, SIGTERM and, unless it was ignored when the program started,
/// SIGHUP. They are blocked in the thread that makes the object and in all that it starts, and are read from
/// a descriptor. Owned by the application; lives longer than those threads.
class EndingSignals {
  public:
    /// Throws `std::system_error`.
    EndingSignals();

    /// Can be read when a signal is there.
    int descriptor() const { return _arrivals.number(); }

    bool haveArrived() const;

    /// Takes one that has arrived; its name.
    std::string take() const;

  private:
    Descriptor _arrivals;
};

/// Makes write errors out of the signals that a closed pipe and a limit of file sizes send, and lets children
/// be waited for, whatever the starter of the program left.
void setOtherSignals();

}  // namespace VorNode
