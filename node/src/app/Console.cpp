#include "app/Console.h"

#include "LocalTime.h"
#include "PlainText.h"

namespace VorNode {

Console::Console(int out, int errors, Kind kind) : _kind(kind), _writer(out, errors) {}

void Console::say(const std::string& line) {
    const std::lock_guard lock(_mutex);
    _writer.write(LineWriter::Out, formatLocalTime(Poco::Timestamp()) + ' ' + plainText(line));
}

void Console::writeError(const std::string& line) {
    _writer.write(LineWriter::Errors, plainText(line));
}

void Console::showProgress(const std::string& text) {
    if (isTerminal()) {
        _writer.showProgress(plainText(text));
    }
}

int Console::ErrorLineBuffer::sync() {
    std::istringstream lines(str());
    str("");
    for (std::string line; std::getline(lines, line);) {
        _console.writeError(line);
    }
    return 0;
}

}  // namespace VorNode
