#include "LogCapture.h"

#include <algorithm>

#include "LoggingWrapper.h"

namespace VorTest {

namespace {

LogCapture* current = nullptr;

}  // namespace

LogCapture::LogCapture() {
    static const VorMwSpiLog_1 log{{"Test", "VorMwSpiLog", "1"}, &LogCapture::write};
    static const KelMwSpiTrace trace{{"Test", "KelMwSpiTrace", "1"}, &LogCapture::write};
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
    if (current->onLine) {
        current->onLine(line);
    }
    std::lock_guard lock(current->_mutex);
    current->_lines.push_back(line);
}

std::vector<LogLine> LogCapture::lines() const {
    std::lock_guard lock(_mutex);
    return _lines;
}

std::vector<LogLine> LogCapture::messages() const {
    std::vector<LogLine> found = lines();
    std::erase_if(found, [](const LogLine& line) { return line.level >= Vor::LoggingWrapper::traceLevel; });
    return found;
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
