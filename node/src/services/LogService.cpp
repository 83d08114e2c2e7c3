#include "services/LogService.h"

#include <string>

#include <Poco/DateTime.h>
#include <Poco/DateTimeFormatter.h>
#include <Poco/NumberFormatter.h>
#include <Poco/Timespan.h>
#include <Poco/Timestamp.h>

#include "LocalTime.h"
#include "services/Operation.h"

namespace VorNode {

namespace {

constexpr int errorLevel = 3;
constexpr int traceLevel = 8;

/// The zone is asked of the system for that very instant: POCO's own knows today's offset only.
std::string formatLocalTime(Poco::Timestamp time) {
    const int offset = static_cast<int>(localTime(time).tm_gmtoff);
    const Poco::DateTime shifted(time + Poco::Timespan(offset, 0));
    return Poco::DateTimeFormatter::format(shifted, "%Y-%m-%dT%H:%M:%S.%i%z", offset);
}

void appendEscaped(const char* text, std::string& line) {
    for (const char* next = text == nullptr ? "" : text; *next != '\0'; ++next) {
        const unsigned char byte = static_cast<unsigned char>(*next);
        if (byte == '\n') {
            line += "\\n";
        } else if (byte == '\t') {
            line += "\\t";
        } else if (byte < 0x20 || byte == 0x7f) {
            line += "\\x" + Poco::NumberFormatter::formatHex(static_cast<unsigned>(byte), 2);
        } else {
            line += *next;
        }
    }
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
        std::string line = formatLocalTime(Poco::Timestamp()) + ' ' + std::to_string(level) + ' ';
        appendEscaped(record.operation, line);
        line += ": ";
        appendEscaped(record.text, line);
        line += '\n';
        _out << line << std::flush;
    });
}

}  // namespace VorNode
