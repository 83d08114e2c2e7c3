#include "app/Console.h"

#include "app/ClockText.h"

namespace VorNode {

Console::Console(std::ostream& out, std::ostream& errors, Kind kind)
    : _out(out), _errors(errors), _kind(kind) {}

void Console::say(const std::string& line) {
    std::lock_guard lock(_mutex);
    clearProgress();
    _out << clockText(Poco::Timestamp()) + ' ' + line + '\n' << std::flush;
}

void Console::writeError(const std::string& line) {
    std::lock_guard lock(_mutex);
    clearProgress();
    _errors << line + '\n' << std::flush;
}

void Console::showProgress(const std::string& text) {
    std::lock_guard lock(_mutex);
    if (_kind == Kind::Terminal && text != _progress) {
        clearProgress();
        _out << text << std::flush;
        _progress = text;
    }
}

void Console::clearProgress() {
    if (!_progress.empty()) {
        _out << '\r' + std::string(_progress.size(), ' ') + '\r' << std::flush;
        _progress.clear();
    }
}

int Console::ErrorLineBuffer::sync() {
    std::string lines = str();
    str("");
    if (lines.ends_with('\n')) {
        lines.pop_back();
    }
    if (!lines.empty()) {
        _console.writeError(lines);
    }
    return 0;
}

}  // namespace VorNode
