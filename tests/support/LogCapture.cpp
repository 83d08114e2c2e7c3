#include "LogCapture.h"

#include <algorithm>
#include <utility>

#include "LoggingWrapper.h"

namespace VorTest {

static LogCapture* current = nullptr;

LogCapture::LogCapture() {
    static const VorMwSpiLog_1 log{{"Test", "VorMwSpiLog", "1"}, &LogCapture::write};
    static const KelMwSpiTrace trace{{"Test", "KelMwSpiTrace", "1"}, &LogCapture::writeTrace};
    current = this;
    Vor::LoggingWrapper::instance().connect(&log, &trace);
    Vor::LoggingWrapper::instance().setLevel(Vor::LoggingWrapper::traceLevel);
}

LogCapture::~LogCapture() {
    Vor::LoggingWrapper::instance().connect(nullptr, nullptr);
    current = nullptr;
}

void LogCapture::write(const VorMwSpiLogRecord* record) {
    const LogLine line{record->level, record->operation, record->text};
    if (current->onLine)
        current->onLine(line);
    std::lock_guard lock(current->_mutex);
    current->_lines.push_back(line);
}

void LogCapture::writeTrace(const VorMwSpiLogRecord* record) {
    if (record->level == Vor::LoggingWrapper::traceLevel)
        write(record);
}

std::vector<LogLine> LogCapture::lines() const {
    std::lock_guard lock(_mutex);
    return _lines;
}

std::vector<std::string> LogCapture::takeMessages() {
    std::lock_guard lock(_mutex);
    std::vector<std::string> texts;
    for (const LogLine& line : std::exchange(_lines, {}))
        if (line.level < Vor::LoggingWrapper::traceLevel)
            texts.push_back(std::to_string(line.level) + " " + line.operation + " " + line.text);
    return texts;
}

int LogCapture::count(int level, const std::string& textFragment) const {
    std::lock_guard lock(_mutex);
    return static_cast<int>(std::count_if(_lines.begin(), _lines.end(), [&](const LogLine& line) {
        return line.level == level && line.text.find(textFragment) != std::string::npos;
    }));
}

void LogCapture::clear() {
    std::lock_guard lock(_mutex);
    _lines.clear();
}

}  // namespace VorTest
