#include "services/LogService.h"

#include <string>

#include <Poco/Timestamp.h>

#include "LocalTime.h"
#include "PlainText.h"
#include "services/Operation.h"

namespace VorNode {

namespace {

constexpr int errorLevel = 3;
constexpr int traceLevel = 8;

std::string plainTextOf(const char* text) {
    return plainText(text == nullptr ? "" : text);
}

}  // namespace

LogService::LogService(std::ostream& out)
    : _log{{"VorNodeLog", "VorMwSpiLog", "1"},
           [](const VorMwSpiLogRecord* record) { current().write(record->level, *record); }},
      _trace{{"VorNodeLog", "KelMwSpiTrace", "1"},
             [](const VorMwSpiLogRecord* record) { current().writeTrace(*record); }},
      _out(out) {}

void LogService::writeTrace(const VorMwSpiLogRecord& record) {
    if (record.level >= traceLevel) {
        write(traceLevel, record);
    }
}

void LogService::write(int level, const VorMwSpiLogRecord& record) {
    if (level <= errorLevel) {
        ++_errors;
    }
    carryOut([&] {
        // The time is taken under the lock: lines are in its order.
        Poco::FastMutex::ScopedLock lock(_mutex);
        const std::string line = formatLocalTime(Poco::Timestamp()) + ' ' + std::to_string(level) + ' ' +
                                 plainTextOf(record.operation) + ": " + plainTextOf(record.text) + '\n';
        _out << line << std::flush;
    });
}

}  // namespace VorNode
