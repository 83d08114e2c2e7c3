#include "LoggingWrapper.h"

#include <cstdarg>
#include <string>

#include "VorException.h"

namespace Vor {

namespace {

/// Formats the record's text and hands the record over. A record that cannot be written is dropped: logging
/// must not fail its caller.
template <class WriteT>
void writeRecord(WriteT write, VorMwSpiLogRecord record, const char* format, std::va_list arguments) noexcept
    __attribute__((format(printf, 3, 0)));

template <class WriteT>
void writeRecord(WriteT write, VorMwSpiLogRecord record, const char* format,
                 std::va_list arguments) noexcept {
    try {
        const std::string text = formatText(format, arguments);
        record.text = text.c_str();
        write(&record);
    } catch (...) {
        // Nothing can be told without the log.
    }
}

}  // namespace

LoggingWrapper& LoggingWrapper::instance() {
    static LoggingWrapper wrapper;
    return wrapper;
}

void LoggingWrapper::connect(const VorMwSpiLog_1* log, const KelMwSpiTrace* trace) {
    _log = log;
    _trace = trace;
}

void LoggingWrapper::log(LogLevel level, const char* operation, const char* file, int line,
                         const char* subsystem, const char* format, ...) noexcept {
    const VorMwSpiLog_1* service = _log;
    if (service == nullptr || !isWritten(level)) {
        return;
    }
    std::va_list arguments;
    va_start(arguments, format);
    writeRecord(service->write, {static_cast<int>(level), operation, nullptr, file, line, subsystem}, format,
                arguments);
    va_end(arguments);
}

void LoggingWrapper::trace(const char* operation, const char* file, int line, const char* subsystem,
                           const char* format, ...) noexcept {
    const KelMwSpiTrace* service = _trace;
    if (service == nullptr || !isTracing()) {
        return;
    }
    std::va_list arguments;
    va_start(arguments, format);
    writeRecord(service->trace, {traceLevel, operation, nullptr, file, line, subsystem}, format, arguments);
    va_end(arguments);
}

}  // namespace Vor
