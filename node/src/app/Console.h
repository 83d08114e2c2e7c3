#pragma once

#include <cstddef>
#include <mutex>
#include <ostream>
#include <sstream>
#include <string>

namespace VorNode {

/// The terminal, or whatever the program writes to: whole lines for people, whole lines of faults and of the
/// log, and on a terminal one line that is written over and over. Owned by the application; any thread.
class Console {
  public:
    enum class Kind { Terminal, Plain };

    /// Both streams outlive the console, and are written to through it only.
    Console(std::ostream& out, std::ostream& errors, Kind kind);

    /// A status line, with the time in front.
    void say(const std::string& line);

    /// A line on the stream of errors, as it is.
    void writeError(const std::string& line);

    /// Replaces the line that is written over; nothing but on a terminal.
    void showProgress(const std::string& text);

    /// A stream of lines for the stream of errors: each flush writes what was collected. One thread at a
    /// time.
    std::ostream& errorLines() { return _errorLines; }

  private:
    class ErrorLineBuffer : public std::stringbuf {
      public:
        explicit ErrorLineBuffer(Console& console) : _console(console) {}
        int sync() override;

      private:
        Console& _console;
    };

    /// With the lock held.
    void clearProgress();

    /// Guards the streams and the progress.
    std::mutex _mutex;
    std::ostream& _out;
    std::ostream& _errors;
    const Kind _kind;
    std::string _progress;
    ErrorLineBuffer _errorLineBuffer{*this};
    std::ostream _errorLines{&_errorLineBuffer};
};

}  // namespace VorNode
