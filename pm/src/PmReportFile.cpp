#include "PmReportFile.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace VorPm {

namespace {

constexpr mode_t newFileMode = 0666;

/// What the file holds on the disk; -1 when it is not known.
long sizeOnDisk(std::FILE* file) {
    struct stat status {};
    return ::fstat(::fileno(file), &status) == 0 ? static_cast<long>(status.st_size) : -1;
}

}  // namespace

bool PmReportFile::open(const std::string& path) {
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW, newFileMode);
    if (descriptor < 0) {
        return false;
    }
    // Two reports can come to the same name; the one that is being written must not be emptied by the other.
    if (::flock(descriptor, LOCK_EX | LOCK_NB) == 0 && ::ftruncate(descriptor, 0) == 0) {
        _file.reset(::fdopen(descriptor, "w"));
    }
    if (_file == nullptr) {
        const int reason = errno;
        ::close(descriptor);
        errno = reason;
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
    // Moving flushes first; when that fails nothing is buffered any more, and moving to what is left
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
    const bool flushed = std::fflush(_file.get()) == 0 && std::ferror(_file.get()) == 0 &&
                         sizeOnDisk(_file.get()) == std::ftell(_file.get());
    return std::fclose(_file.release()) == 0 && flushed;
}

void PmReportFile::forgetLostEnds() {
    const long held = sizeOnDisk(_file.get());
    while (!_goodEnds.empty() && _goodEnds.back() > held) {
        _goodEnds.pop_back();
    }
    std::clearerr(_file.get());
}

}  // namespace VorPm
