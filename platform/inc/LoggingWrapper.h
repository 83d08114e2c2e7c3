#pragma once

#include <atomic>

#include "VorMwSpiLog.h"

namespace Vor {

/// Levels of messages; a message is written when the configured level is at least its own.
enum class LogLevel : int { Error = 3, Warning = 4, Information = 6 };

/// The process-wide way to the platform's log and trace. Any thread; nothing here throws.
class LoggingWrapper {
  public:
    static constexpr int defaultLevel = 6;
    static constexpr int traceLevel = 8;

    static LoggingWrapper& instance();

    /// Messages go to `log` and to `trace`, traces to `trace` alone; null for nowhere. Both services must
    /// outlive their use here.
    void connect(const VorMwSpiLog_1* log, const KelMwSpiTrace* trace);

    void setLevel(int level) { _level.store(level, std::memory_order_relaxed); }
    bool isWritten(LogLevel level) const {
        return _level.load(std::memory_order_relaxed) >= static_cast<int>(level);
    }
    /// Traces are written only when the level is above 7.
    bool isTracing() const { return _level.load(std::memory_order_relaxed) >= traceLevel; }

    void log(LogLevel level, const char* operation, const char* file, int line, const char* subsystem,
             const char* format, ...) noexcept __attribute__((format(printf, 7, 8)));
    void trace(const char* operation, const char* file, int line, const char* subsystem, const char* format,
               ...) noexcept __attribute__((format(printf, 6, 7)));

  private:
    LoggingWrapper() = default;

    std::atomic<int> _level{defaultLevel};
    std::atomic<const VorMwSpiLog_1*> _log{nullptr};
    std::atomic<const KelMwSpiTrace*> _trace{nullptr};
};

}  // namespace Vor
