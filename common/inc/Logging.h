// The logging macros. The operation's name is that of the function around them, so they do not belong in
// lambdas. The subsystem is the `traceSubsystem` of the namespace around them.
#pragma once

#include "LoggingWrapper.h"

namespace Vor {
inline constexpr char traceSubsystem[] = "VorCommon";
}

#define VOR_LOG_AT(level, ...)                                                                         \
    do {                                                                                               \
        if (::Vor::LoggingWrapper::instance().isWritten(level)) {                                      \
            ::Vor::LoggingWrapper::instance().log(level, __func__, __FILE__, __LINE__, traceSubsystem, \
                                                  __VA_ARGS__);                                        \
        }                                                                                              \
    } while (false)

#define LOG_ERROR(...) VOR_LOG_AT(::Vor::LogLevel::Error, __VA_ARGS__)
#define LOG_WARNING(...) VOR_LOG_AT(::Vor::LogLevel::Warning, __VA_ARGS__)
#define LOG_INFORMATION(...) VOR_LOG_AT(::Vor::LogLevel::Information, __VA_ARGS__)

// The arguments are evaluated only while traces are written.
#define LOG_TRACE(...)                                                                            \
    do {                                                                                          \
        if (::Vor::LoggingWrapper::instance().isTracing()) {                                      \
            ::Vor::LoggingWrapper::instance().trace(__func__, __FILE__, __LINE__, traceSubsystem, \
                                                    __VA_ARGS__);                                 \
        }                                                                                         \
    } while (false)
