#include "PmReportFile.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "PmFiles.h"

namespace VorPm {

namespace {

/// What the file holds on the disk; -1 when it is not known.
long sizeOnDisk(std::FILE* file) {
    struct stat status {};
    return ::fstat(::fileno(file), &status) == 0 ? static_cast<long>(status.st_size) : -1;
}

/// Locks the file. A file system without locks is not a reason to write no reports.
bool isLockedByOther(const PmDescriptor& file) {
    return ::flock(file.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

}  // namespace

bool PmReportFile::open(const std::string& path) {
    PmDescriptor file = openFileWithOneName(path, O_WRONLY | O_CREAT);
    // Two reports can come to the same name; the one that is being written must not be emptied by the other.
    if (!file.isOpen() || isLockedByOther(file) || ::ftruncate(file.get(), 0) != 0) {
        return false;
    }
    _file.reset(::fdopen(file.get(), "w"));
    if (isOpen()) {
        file.release();
    }
    return isOpen();
}

bool PmReportFile::writeToStream(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), _file.get()) == text.size()) {
        return true;
    }
    forgetLostEnds();
    return false;
}

bool PmReportFile::flush() {
    const bool taken = writeToStream(_buffer->text());
    _buffer->clear();
    return taken;
}

bool PmReportFile::writeAlone(std::string_view text) {
    if (text.size() > _buffer->room() && !flush()) {
        return false;
    }
    if (text.size() > _buffer->room()) {
        return writeToStream(text);
    }
    _buffer->append(text);
    return true;
}

bool PmReportFile::markGoodEnd() {
    const long end = std::ftell(_file.get());
    if (end < 0) {
        return false;
    }
    _goodEnds.push_back(end);
    return true;
}

void PmReportFile::abandon() {
    const bool isTextLeft = _buffer != nullptr && !_buffer->text().empty();
    _abandoned = _abandoned || isTextLeft || std::ftell(_file.get()) != lastGoodPosition();
}

bool PmReportFile::rewind() {
    // `fseek` flushes first. When the flush fails, the stream has dropped its buffer, and a second `fseek`
    // succeeds.
    if (std::fseek(_file.get(), lastGoodPosition(), SEEK_SET) != 0) {
        forgetLostEnds();
        if (std::fseek(_file.get(), lastGoodPosition(), SEEK_SET) != 0) {
            return false;
        }
    }
    _abandoned = ::ftruncate(::fileno(_file.get()), lastGoodPosition()) != 0;
    return !_abandoned;
}

bool PmReportFile::finish() {
    const bool flushed = flush() && std::fflush(_file.get()) == 0 && std::ferror(_file.get()) == 0 &&
                         sizeOnDisk(_file.get()) == std::ftell(_file.get());
    const bool complete = std::fclose(_file.release()) == 0 && flushed;
    if (!complete) {
        _lostGps += _goodEnds.size();
    }
    return complete;
}

void PmReportFile::forgetLostEnds() {
    const long held = sizeOnDisk(_file.get());
    while (!_goodEnds.empty() && _goodEnds.back() > held) {
        _goodEnds.pop_back();
        ++_lostGps;
    }
    std::clearerr(_file.get());
}

}  // namespace VorPm
