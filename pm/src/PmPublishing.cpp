#include "PmPublishing.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ostream>

#include <Poco/BufferedStreamBuf.h>
#include <Poco/DeflatingStream.h>
#include <Poco/Exception.h>
#include <fcntl.h>
#include <unistd.h>

#include "PmFiles.h"
#include "PmLog.h"
#include "PmStorage.h"
#include "VorException.h"

namespace VorPm {

namespace {

constexpr std::size_t bufferSize = 8192;
constexpr int defaultCompressionLevel = -1;

std::string destinationOf(const std::string& tempPath) {
    return getReportFileLocation() + "/" + tempPath.substr(tempPath.rfind('/') + 1);
}

/// Brings a file's bytes, or a folder's entries, to the disk.
void syncToDisk(const PmDescriptor& opened, const std::string& path) {
    if (!opened.isOpen() || ::fsync(opened.get()) != 0) {
        LOG_WARNING("Could not sync %s to disk, reason %s", path.c_str(), std::strerror(errno));
    }
}

/// Says why the report stays where it is, by `errno`.
void logRefusal(const char* operation, const std::string& from, const std::string& destination) {
    LOG_ERROR_IN(operation, "Error copying file %s -> %s, reason %s", from.c_str(), destination.c_str(),
                 std::strerror(errno));
}

/// Brings the report to the disk, then to its destination. False, with a message, when it stays where it is;
/// what has taken its place meanwhile is not moved either.
bool moveReport(const char* operation, const std::string& from, const std::string& destination) {
    const PmDescriptor report = openRegularFile(from, O_RDONLY);
    if (!report.isOpen() && isOtherThanFile(from)) {
        logRefusal(operation, from, destination);
        return false;
    }
    syncToDisk(report, from);
    const bool moved = std::rename(from.c_str(), destination.c_str()) == 0;
    if (!moved) {
        logRefusal(operation, from, destination);
    }
    return moved;
}

/// Writes to an open file. A write that the file refuses, in part too, makes the stream bad.
class FileBuffer : public Poco::BufferedStreamBuf {
  public:
    explicit FileBuffer(const PmDescriptor& file)
        : BasicBufferedStreamBuf(bufferSize, std::ios::out), _file(file) {}

  private:
    int writeToDevice(const char* text, std::streamsize size) override {
        return static_cast<int>(::write(_file.get(), text, static_cast<std::size_t>(size)));
    }

    const PmDescriptor& _file;
};

void requireOpen(const PmDescriptor& file, const std::string& path) {
    if (!file.isOpen()) {
        throw Poco::OpenFileException(path);
    }
}

void requireGood(const std::ios& stream, const std::string& path) {
    if (!stream.good()) {
        throw Poco::WriteFileException(path);
    }
}

/// Throws when not all of the file could be read.
void copy(const PmDescriptor& file, const std::string& path, std::ostream& output) {
    std::array<char, bufferSize> buffer;
    ssize_t size = 0;
    while ((size = ::read(file.get(), buffer.data(), buffer.size())) > 0) {
        output.write(buffer.data(), size);
    }
    if (size < 0) {
        throw Poco::ReadFileException(path);
    }
}

/// Writes the compressed form of a file. Throws when any of its bytes could not be read or written: the
/// deflating stream can look good while only the stream under it went bad, and some file systems refuse what
/// was written only when the file is closed.
void compress(const PmDescriptor& plain, const std::string& plainPath, const std::string& compressedPath) {
    requireOpen(plain, plainPath);
    // What an earlier run left there.
    ::unlink(compressedPath.c_str());
    PmDescriptor compressed = openRegularFile(compressedPath, O_WRONLY | O_CREAT | O_EXCL);
    requireOpen(compressed, compressedPath);
    FileBuffer buffer(compressed);
    std::ostream output(&buffer);
    Poco::DeflatingOutputStream deflater(output, Poco::DeflatingStreamBuf::STREAM_GZIP,
                                         defaultCompressionLevel);
    copy(plain, plainPath, deflater);
    requireGood(deflater, compressedPath);
    if (deflater.close() != 0) {
        throw Poco::WriteFileException(compressedPath);
    }
    requireGood(output, compressedPath);
    if (::close(compressed.release()) != 0) {
        throw Poco::WriteFileException(compressedPath);
    }
}

}  // namespace

bool publishReport(const std::string& tempPath) {
    LOG_TRACE(" >> ");
    bool published = false;
    try {
        published = moveReport(__func__, tempPath, destinationOf(tempPath));
    } catch (const Vor::VorException& fault) {
        LOG_ERROR("Failed fetching report location: %s", fault.what());
    } catch (...) {
        LOG_ERROR("Unknown exception while publishing report");
    }
    LOG_TRACE(" << ");
    return published;
}

bool publishGzipReport(const std::string& tempPath) {
    LOG_TRACE(" >> ");
    bool published = false;
    std::string compressedPath;
    try {
        compressedPath = tempPath + ".gz";
        const std::string destination = destinationOf(compressedPath);
        const PmDescriptor plain = openRegularFile(tempPath, O_RDONLY);
        if (!plain.isOpen() && isOtherThanFile(tempPath)) {
            logRefusal(__func__, tempPath, destination);
        } else {
            compress(plain, tempPath, compressedPath);
            published = moveReport(__func__, compressedPath, destination);
        }
        if (published) {
            ::unlink(tempPath.c_str());
        }
    } catch (const Vor::VorException& fault) {
        LOG_ERROR("Failed fetching report location: %s", fault.what());
    } catch (...) {
        LOG_ERROR("Unknown exception while publishing report");
        ::unlink(compressedPath.c_str());
        publishReport(tempPath);
    }
    LOG_TRACE(" << ");
    return published;
}

void syncReportFolder() {
    try {
        const std::string folder = getReportFileLocation();
        syncToDisk(openFolder(folder), folder);
    } catch (const Vor::VorException& fault) {
        LOG_ERROR("Failed fetching report location: %s", fault.what());
    } catch (...) {
        LOG_WARNING("Could not sync the report folder to disk");
    }
}

}  // namespace VorPm
