#pragma once

#include <mutex>
#include <ostream>
#include <sstream>
#include <string>

#include "app/LineWriter.h"

namespace VorNode {

/// The terminal, or whatever the program writes to: whole lines for people, whole lines of faults and of the
/// log, and on a terminal one line that is written over and over. Control characters are escaped, as those of
/// the log are. Nothing waits until it is written. Owned by the application; any thread.
class Console {
  public:
    enum class Kind { Terminal, Plain };

    /// Both descriptors stay open as long as the process lives, and are written to through the console only.
    Console(int out, int errors, Kind kind);

    bool isTerminal() const { return _kind == Kind::Terminal; }

    /// A status line, with the time in front.
    void say(const std::string& line);

    /// A line on the stream of errors.
    void writeError(const std::string& line);

    /// Replaces the line that is written over; nothing but on a terminal.
    void showProgress(const std::string& text);

    /// A stream of lines for the stream of errors: each flush writes what was collected. One thread at a
    /// time.
    std::ostream& errorLines() { return _errorLines; }

    /// Lets what was said be written, for at most a second; what comes later is dropped.
    void close() { _writer.close(); }

  private:
    class ErrorLineBuffer : public std::stringbuf {
      public:
        explicit ErrorLineBuffer(Console& console) : _console(console) {}
        int sync() override;

      private:
        Console& _console;
    };

    const Kind _kind;
    LineWriter _writer;
    /// Keeps status lines in the order of their times.
    std::mutex _mutex;
    ErrorLineBuffer _errorLineBuffer{*this};
    std::ostream _errorLines{&_errorLineBuffer};
};

}  // namespace VorNode
