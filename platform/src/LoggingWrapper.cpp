#include "LoggingWrapper.h"

#include <cstdarg>
#include <string>

#include "VorException.h"

namespace Vor {

namespace {

/// A record that cannot be written is dropped, here and below: logging must not fail its caller.
void writeTo(const VorMwSpiLog_1* log, const VorMwSpiLogRecord& record) noexcept {
    try {
        if (log != nullptr) {
            log->write(&record);
        }
    } catch (...) {
        // Nothing can be told without the log.
    }
}

void writeTo(const KelMwSpiTrace* trace, const VorMwSpiLogRecord& record) noexcept {
    try {
        if (trace != nullptr) {
            trace->trace(&record);
        }
    } catch (...) {
        // The same.
    }
}

/// Formats the record's text and hands the record to each service that is there.
template <class... ServiceT>
void writeRecord(VorMwSpiLogRecord record, const char* format, std::va_list arguments,
                 const ServiceT*... services) noexcept __attribute__((format(printf, 2, 0)));

template <class... ServiceT>
void writeRecord(VorMwSpiLogRecord record, const char* format, std::va_list arguments,
                 const ServiceT*... services) noexcept {
    try {
        const std::string text = formatText(format, arguments);
        record.text = text.c_str();
        (writeTo(services, record), ...);
    } catch (...) {
        // The same.
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
    if (!isWritten(level)) {
        return;
    }
    std::va_list arguments;
    va_start(arguments, format);
    writeRecord({static_cast<int>(level), operation, nullptr, file, line, subsystem}, format, arguments,
                _log.load(), _trace.load());
    va_end(arguments);
}

void LoggingWrapper::trace(const char* operation, const char* file, int line, const char* subsystem,
                           const char* format, ...) noexcept {
    if (!isTracing()) {
        return;
    }
    std::va_list arguments;
    va_start(arguments, format);
    writeRecord({traceLevel, operation, nullptr, file, line, subsystem}, format, arguments, _trace.load());
    va_end(arguments);
}

}  // namespace Vor
