// The logging macros. The operation is part of the contract with operators: LOG_ERROR and its like take the
// name of the function around them, so they do not belong in lambdas; those with _IN take it as their first
// argument, for functions that are a part of an operation. The subsystem is the `traceSubsystem` of the
// namespace around them.
#pragma once

#include "LoggingWrapper.h"

namespace Vor {
inline constexpr char traceSubsystem[] = "VorCommon";
}

#define VOR_LOG_AT(level, operation, ...)                                                               \
    do {                                                                                                \
        if (::Vor::LoggingWrapper::instance().isWritten(level)) {                                       \
            ::Vor::LoggingWrapper::instance().log(level, operation, __FILE__, __LINE__, traceSubsystem, \
                                                  __VA_ARGS__);                                         \
        }                                                                                               \
    } while (false)

#define LOG_ERROR_IN(operation, ...) VOR_LOG_AT(::Vor::LogLevel::Error, operation, __VA_ARGS__)
#define LOG_WARNING_IN(operation, ...) VOR_LOG_AT(::Vor::LogLevel::Warning, operation, __VA_ARGS__)
#define LOG_INFORMATION_IN(operation, ...) VOR_LOG_AT(::Vor::LogLevel::Information, operation, __VA_ARGS__)

// The arguments are evaluated only while traces are written.
#define LOG_TRACE_IN(operation, ...)                                                               \
    do {                                                                                           \
        if (::Vor::LoggingWrapper::instance().isTracing()) {                                       \
            ::Vor::LoggingWrapper::instance().trace(operation, __FILE__, __LINE__, traceSubsystem, \
                                                    __VA_ARGS__);                                  \
        }                                                                                          \
    } while (false)

#define LOG_ERROR(...) LOG_ERROR_IN(__func__, __VA_ARGS__)
#define LOG_WARNING(...) LOG_WARNING_IN(__func__, __VA_ARGS__)
#define LOG_INFORMATION(...) LOG_INFORMATION_IN(__func__, __VA_ARGS__)
#define LOG_TRACE(...) LOG_TRACE_IN(__func__, __VA_ARGS__)
