#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace VorPm {

/// The file of one report while it is written: knows where the last complete GP ends and goes back there.
/// Owned by its report writer, used by the worker only. Failures are told by results; `errno` has the reason.
///
/// A stream throws its buffer away when a flush fails, so GPs that were complete may be lost with it. The
/// ends of all complete GPs are kept, and a failed write leaves those that the file really holds.
class PmReportFile {
  public:
    /// Creates the file, or empties the one there. A link in its place is not followed, and a file that
    /// another object has open is left alone.
    bool open(const std::string& path);
    bool isOpen() const { return _file != nullptr; }

    /// The stream's position, what it buffers included; -1 when it is not known.
    long position() const { return std::ftell(_file.get()); }

    /// False when the stream refused the text.
    bool write(std::string_view text);

    /// Takes the position as the end of a complete GP; false when it is not known.
    bool markGoodEnd();

    /// The end of the last complete GP; 0 when there is none.
    long lastGoodPosition() const { return _goodEnds.empty() ? 0 : _goodEnds.back(); }

    /// Goes back to the end of the last complete GP and cuts off what follows it. It is empty when there is
    /// none.
    bool rewind();

    /// Flushes and closes the file; false unless everything written is in it.
    bool finish();

    /// Closes the file, whatever becomes of what is buffered.
    void close() { _file.reset(); }

  private:
    void forgetLostEnds();

    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    std::unique_ptr<std::FILE, Closer> _file;
    std::vector<long> _goodEnds;
};

}  // namespace VorPm
