// The log service: takes the component's messages and traces.
#pragma once

#include <atomic>
#include <cstdint>
#include <ostream>

#include <Poco/Mutex.h>

#include "VorMwSpiLog.h"
#include "services/Service.h"

namespace VorNode {

/// Writes messages and traces to a stream, one line each:
///
///     2026-03-05T14:15:00.123+01:00 6 operation: text
///
/// The messages that the trace gets, too, are not written again. That is the local time, the level (8 for
/// every trace), the operation and the text, as plain text. Owned by the application, which keeps the stream
/// longer than the service and leaves the writing to it. Any thread, several at once; what cannot be written
/// is lost.
class LogService : public Service<LogService> {
  public:
    explicit LogService(std::ostream& out);

    /// What the component looks up; both live as long as the service.
    KelMgmtSpiInterface_1& logInterface() { return _log.identity; }
    KelMgmtSpiInterface_1& traceInterface() { return _trace.identity; }

    /// Messages of the level of errors so far.
    std::uint64_t errorCount() const { return _errors; }

  private:
    void write(int level, const VorMwSpiLogRecord& record);
    /// Messages were written by the log.
    void writeTrace(const VorMwSpiLogRecord& record);

    std::atomic<std::uint64_t> _errors{0};
    VorMwSpiLog_1 _log;
    KelMwSpiTrace _trace;
    /// Guards the stream.
    Poco::FastMutex _mutex;
    std::ostream& _out;
};

}  // namespace VorNode
