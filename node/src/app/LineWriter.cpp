#include "app/LineWriter.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <mutex>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include <Poco/Event.h>
#include <poll.h>
#include <unistd.h>

namespace VorNode {

namespace {

constexpr std::size_t mostBytesQueued = std::size_t{1024} * 1024;
constexpr long millisecondsToEnd = 1000;

/// False when it cannot be written; a reader may take its time.
bool writeAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(descriptor, text.data(), text.size());
        if (written >= 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) {
            // Whoever shares the terminal or the pipe may have switched waiting off.
            pollfd room{descriptor, POLLOUT, 0};
            ::poll(&room, 1, -1);
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

}  // namespace

class LineWriter::Work {
  public:
    Work(int out, int errors) : _descriptors{out, errors} {}

    void queue(Stream stream, const std::string& line) {
        {
            const std::lock_guard lock(_mutex);
            if (_closed) {
                return;
            }
            if (_waiting.bytes + line.size() < mostBytesQueued) {
                _waiting.bytes += line.size() + 1;
                _waiting.lines.push_back({stream, line + '\n'});
            } else {
                ++_waiting.missing[stream];
            }
        }
        _news.set();
    }

    void queueProgress(const std::string& text) {
        {
            const std::lock_guard lock(_mutex);
            if (_closed || text == _progress) {
                return;
            }
            _progress = text;
        }
        _news.set();
    }

    void close() {
        {
            const std::lock_guard lock(_mutex);
            _closed = true;
            _progress.clear();
        }
        _news.set();
        _ended.tryWait(millisecondsToEnd);
    }

    /// The thread.
    void run() {
        for (bool last = false; !last;) {
            _news.wait();
            Batch batch;
            std::string progress;
            {
                const std::lock_guard lock(_mutex);
                std::swap(batch, _waiting);
                progress = _progress;
                last = _closed;
            }
            write(batch, progress);
        }
        _ended.set();
    }

  private:
    using Counts = std::array<std::size_t, 2>;

    struct Line {
        Stream stream;
        std::string text;
    };

    /// The missing lines come after the others.
    struct Batch {
        std::vector<Line> lines;
        std::size_t bytes = 0;
        Counts missing{};
    };

    void write(const Batch& batch, const std::string& progress) {
        if (!batch.lines.empty() || progress != _shown) {
            clearProgress();
        }
        for (const Line& line : batch.lines) {
            tellMissing(line.stream);
            if (!writeAll(_descriptors[line.stream], line.text)) {
                ++_missing[line.stream];
            }
        }
        for (const Stream stream : {Out, Errors}) {
            _missing[stream] += batch.missing[stream];
            tellMissing(stream);
        }
        if (progress != _shown && writeAll(_descriptors[Out], progress)) {
            _shown = progress;
        }
    }

    void tellMissing(Stream stream) {
        if (_missing[stream] == 0) {
            return;
        }
        const std::string text = "vor-node: lines that could not be written in time are missing here: " +
                                 std::to_string(_missing[stream]) + '\n';
        if (writeAll(_descriptors[stream], text)) {
            _missing[stream] = 0;
        }
    }

    void clearProgress() {
        if (!_shown.empty()) {
            writeAll(_descriptors[Out], '\r' + std::string(_shown.size(), ' ') + '\r');
            _shown.clear();
        }
    }

    const std::array<int, 2> _descriptors;
    Poco::Event _news;
    Poco::Event _ended{Poco::Event::EVENT_MANUALRESET};

    /// Guards what follows, up to the thread's own.
    std::mutex _mutex;
    Batch _waiting;
    std::string _progress;
    bool _closed = false;

    // The thread's own.
    Counts _missing{};
    std::string _shown;
};

LineWriter::LineWriter(int out, int errors) : _work(std::make_shared<Work>(out, errors)) {
    std::thread([work = _work] { work->run(); }).detach();
}

LineWriter::~LineWriter() {
    close();
}

void LineWriter::write(Stream stream, const std::string& line) {
    _work->queue(stream, line);
}

void LineWriter::showProgress(const std::string& text) {
    _work->queueProgress(text);
}

void LineWriter::close() {
    _work->close();
}

}  // namespace VorNode
