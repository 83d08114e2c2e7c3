#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "VorMwSpiLog.h"

namespace VorTest {

struct LogLine {
    int level;
    std::string operation;
    std::string text;

    bool operator==(const LogLine&) const = default;
};

/// Takes the log in place of the platform's services, traces included, for as long as it lives; at most one
/// does. Any thread.
class LogCapture {
  public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// Called with every record, on the thread that writes it, before the record counts as written. Set
    /// before other threads log.
    std::function<void(const LogLine&)> onLine;

    /// What was written so far.
    std::vector<LogLine> lines() const;
    /// "level operation text" of what was written since the last call, traces left out.
    std::vector<std::string> takeMessages();
    int count(int level, const std::string& textFragment) const;
    void clear();

  private:
    static void write(const VorMwSpiLogRecord* record);
    static void writeTrace(const VorMwSpiLogRecord* record);

    mutable std::mutex _mutex;
    std::vector<LogLine> _lines;
};

}  // namespace VorTest
