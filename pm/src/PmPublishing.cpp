#include "PmPublishing.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <Poco/DeflatingStream.h>
#include <Poco/Exception.h>
#include <Poco/FileStream.h>
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

/// True when opening found something else than a regular file; `errno` stays.
bool isOtherThanFile(const PmDescriptor& opened) {
    return !opened.isOpen() && (errno == ELOOP || errno == ENXIO);
}

/// Brings the report to the disk, then to its destination. False, with `errno`, when it stays where it is;
/// what has taken its place meanwhile is not moved either.
bool moveReport(const std::string& from, const std::string& destination) {
    const PmDescriptor report = openRegularFile(from, O_RDONLY);
    if (isOtherThanFile(report)) {
        return false;
    }
    syncToDisk(report, from);
    return std::rename(from.c_str(), destination.c_str()) == 0;
}

void requireGood(const std::ios& stream, const std::string& path) {
    if (!stream.good()) {
        throw Poco::WriteFileException(path);
    }
}

/// Throws when the file could not be opened, or not all of it be read.
void copy(const PmDescriptor& file, const std::string& path, std::ostream& output) {
    if (!file.isOpen()) {
        throw Poco::OpenFileException(path);
    }
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
/// deflating stream can look good while only the stream under it went bad, so both are looked at.
void compress(const PmDescriptor& plain, const std::string& plainPath, const std::string& compressedPath) {
    // What stands there already may be a link, which must not be written through.
    ::unlink(compressedPath.c_str());
    Poco::FileOutputStream output(compressedPath, std::ios::out | std::ios::trunc | std::ios::binary);
    Poco::DeflatingOutputStream deflater(output, Poco::DeflatingStreamBuf::STREAM_GZIP,
                                         defaultCompressionLevel);
    copy(plain, plainPath, deflater);
    requireGood(deflater, compressedPath);
    if (deflater.close() != 0) {
        throw Poco::WriteFileException(compressedPath);
    }
    requireGood(output, compressedPath);
    output.close();
    requireGood(output, compressedPath);
}

}  // namespace

bool publishReport(const std::string& tempPath) {
    LOG_TRACE(" >> ");
    bool published = false;
    try {
        const std::string destination = destinationOf(tempPath);
        published = moveReport(tempPath, destination);
        if (!published) {
            LOG_ERROR("Error copying file %s -> %s, reason %s", tempPath.c_str(), destination.c_str(),
                      std::strerror(errno));
        }
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
    const std::string compressedPath = tempPath + ".gz";
    try {
        const std::string destination = destinationOf(compressedPath);
        const PmDescriptor plain = openFileWithOneName(tempPath, O_RDONLY);
        if (isOtherThanFile(plain)) {
            LOG_ERROR("Error copying file %s -> %s, reason %s", tempPath.c_str(), destination.c_str(),
                      std::strerror(errno));
        } else {
            compress(plain, tempPath, compressedPath);
            published = moveReport(compressedPath, destination);
            if (!published) {
                LOG_ERROR("Error copying file %s -> %s, reason %s", compressedPath.c_str(),
                          destination.c_str(), std::strerror(errno));
            }
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
    }
}

}  // namespace VorPm
