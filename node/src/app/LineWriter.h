#pragma once

#include <memory>
#include <string>

namespace VorNode {

/// Writes lines to standard output and error on a thread of its own, so that nobody waits for a reader of
/// either. Lines that find no room, or that cannot be written, are counted, and the count is written in a
/// line of its own where they are missing. Owned by the console; any thread.
class LineWriter {
  public:
    enum Stream { Out, Errors };

    /// The descriptors stay open as long as the process lives.
    LineWriter(int out, int errors);
    ~LineWriter();
    LineWriter(const LineWriter&) = delete;
    LineWriter& operator=(const LineWriter&) = delete;

    /// Queues a line, without its end.
    void write(Stream stream, const std::string& line);

    /// What stands below the lines on standard output and is written over and over; empty takes it away.
    void showProgress(const std::string& text);

    /// What is queued has one second to be written; the rest is dropped, and what comes later too.
    void close();

  private:
    class Work;

    /// Shared with the thread, which may have to be left in a write that does not return.
    const std::shared_ptr<Work> _work;
};

}  // namespace VorNode
