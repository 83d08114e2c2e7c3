#pragma once

#include <chrono>
#include <initializer_list>
#include <optional>

#include "Descriptor.h"

namespace VorNode {

/// Wakes a thread that sleeps in `waitForAny`, by a descriptor of its own. Any thread.
class Notice {
  public:
    /// Throws `std::system_error`.
    Notice();

    /// Until it is cleared the descriptor can be read.
    void set();
    void clear();
    int descriptor() const { return _event.number(); }

  private:
    const Descriptor _event;
};

/// Sleeps until one of the descriptors can be read or the time is over; without a time, for as long as it
/// takes.
void waitForAny(std::initializer_list<int> descriptors,
                std::optional<std::chrono::milliseconds> longest = std::nullopt);

bool canBeRead(int descriptor);

}  // namespace VorNode
