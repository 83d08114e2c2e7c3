#pragma once

#include <exception>

namespace Vor {

/// Keeps what an XML handler throws away from the parser that calls it: the parser is written in C, and what
/// an exception jumps over it never gives back. For one parse; one thread.
class ParserGuard {
  public:
    /// Carries the step out, unless one failed before.
    template <class StepT>
    void carryOut(StepT step) noexcept {
        if (_fault != nullptr) {
            return;
        }
        try {
            step();
        } catch (...) {
            _fault = std::current_exception();
        }
    }

    /// Throws what the first step to fail has thrown. For after the parse.
    void rethrowFault() const {
        if (_fault != nullptr) {
            std::rethrow_exception(_fault);
        }
    }

  private:
    std::exception_ptr _fault;
};

}  // namespace Vor
