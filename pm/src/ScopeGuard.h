#pragma once

#include <utility>

namespace VorPm {

/// Runs an action at the end of its scope, however the scope is left, unless it was dismissed. Lives on one
/// thread's stack.
template <class ActionT>
class ScopeGuard {
  public:
    explicit ScopeGuard(ActionT action) : _action(std::move(action)) {}
    ~ScopeGuard() {
        if (_armed) {
            try {
                _action();
            } catch (...) {
                // Another exception may be on its way, and that one counts.
            }
        }
    }
    ScopeGuard(const ScopeGuard&) = delete;
    ScopeGuard& operator=(const ScopeGuard&) = delete;

    void dismiss() { _armed = false; }

    /// Runs the action now instead. Throws what the action throws.
    void run() {
        dismiss();
        _action();
    }

  private:
    ActionT _action;
    bool _armed = true;
};

}  // namespace VorPm
