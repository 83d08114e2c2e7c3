#pragma once

#include <concepts>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "PmReportBuffer.h"

namespace VorPm {

/// The file of one report while it is written: knows where the last complete GP ends and goes back there.
/// Owned by its report writer, used by the worker only. Failures show in the results; after `open` and
/// `rewind` `errno` has the reason.
///
/// The text of a GP is collected in the thread's buffer and goes to the stream in large pieces, all of it
/// before the GP counts as complete. A stream throws its own buffer away when a flush fails, so GPs that were
/// complete may be lost with it. The ends of all complete GPs are kept, and a failed write leaves those that
/// the file really holds.
class PmReportFile {
  public:
    /// Creates the file, or empties the one there. Only a regular file with one name is taken, and a file
    /// that another object has open is left alone.
    bool open(const std::string& path);
    bool isOpen() const { return _file != nullptr; }

    /// Writing begins, on this thread, with a GP or the footer. Throws when there is no memory.
    void begin() {
        // An earlier thread's buffer may be gone.
        _buffer = nullptr;
        _buffer = &PmReportBuffer::ofThisThread();
        _buffer->clear();
    }

    /// Appends the pieces; false when the stream refused text.
    template <class... PiecesT>
    bool write(const PiecesT&... pieces) {
        if ((PmReportBuffer::roomFor(pieces) + ...) > _buffer->room()) {
            return (writeAlone(pieces) && ...);
        }
        _buffer->append(pieces...);
        return true;
    }

    /// Hands what is collected to the stream; false when it refused.
    bool flush();

    /// Takes the end of what was handed over as the end of a complete GP; false when it is not known.
    bool markGoodEnd();

    /// The GP that was being written has failed.
    void abandon();

    /// True when nothing of a failed GP follows the last complete one, in the file or in a buffer.
    bool isAtGoodEnd() const { return !_abandoned; }

    /// The end of the last complete GP; 0 when there is none.
    long lastGoodPosition() const { return _goodEnds.empty() ? 0 : _goodEnds.back(); }

    /// Goes back to the end of the last complete GP and cuts off what follows it; without a complete GP the
    /// file is empty then.
    bool rewind();

    /// Hands over what is collected, flushes and closes the file; false unless everything written is in it.
    /// Then the report must not be published, and all its GPs count as lost.
    bool finish();

    bool hasLostGps() const { return _lostGps > 0; }

    /// The number of complete GPs that failed writes have taken since the last call.
    std::size_t takeLostGps() { return std::exchange(_lostGps, 0); }

    /// Closes the file, whatever becomes of what is buffered.
    void close() { _file.reset(); }

  private:
    /// For a piece that may not fit.
    bool writeAlone(std::string_view text);
    template <class PieceT>
    requires(!std::convertible_to<PieceT, std::string_view>) bool writeAlone(const PieceT& piece) {
        if (PmReportBuffer::roomFor(piece) > _buffer->room() && !flush()) {
            return false;
        }
        _buffer->append(piece);
        return true;
    }
    bool writeToStream(std::string_view text);
    void forgetLostEnds();

    struct Closer {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    std::unique_ptr<std::FILE, Closer> _file;
    std::vector<long> _goodEnds;
    std::size_t _lostGps = 0;
    /// Valid from `begin` to the thread's next one, for whatever report, and on that thread only.
    PmReportBuffer* _buffer = nullptr;
    /// Text of a failed GP may follow the last complete one.
    bool _abandoned = false;
};

}  // namespace VorPm
