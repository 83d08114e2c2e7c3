#include "PmPublishing.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <Poco/DeflatingStream.h>
#include <Poco/Exception.h>
#include <Poco/FileStream.h>
#include <Poco/StreamCopier.h>
#include <fcntl.h>
#include <unistd.h>

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
void syncToDisk(const std::string& path) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
    const bool synced = descriptor >= 0 && ::fsync(descriptor) == 0;
    const int reason = errno;
    if (descriptor >= 0) {
        ::close(descriptor);
    }
    if (!synced) {
        LOG_WARNING("Could not sync %s to disk, reason %s", path.c_str(), std::strerror(reason));
    }
}

void requireGood(const std::ios& stream, const std::string& path) {
    if (!stream.good()) {
        throw Poco::WriteFileException(path);
    }
}

/// Writes the compressed form of a file. Throws when any of its bytes could not be read or written: the
/// deflating stream can look good while only the stream under it went bad, so both are looked at.
void compress(const std::string& plainPath, const std::string& compressedPath) {
    // What stands there already may be a link, which must not be written through.
    ::unlink(compressedPath.c_str());
    Poco::FileInputStream input(plainPath, std::ios::in | std::ios::binary);
    Poco::FileOutputStream output(compressedPath, std::ios::out | std::ios::trunc | std::ios::binary);
    Poco::DeflatingOutputStream deflater(output, Poco::DeflatingStreamBuf::STREAM_GZIP,
                                         defaultCompressionLevel);
    Poco::StreamCopier::copyStream(input, deflater, bufferSize);
    if (input.bad()) {
        throw Poco::ReadFileException(plainPath);
    }
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
        syncToDisk(tempPath);
        published = std::rename(tempPath.c_str(), destination.c_str()) == 0;
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
        compress(tempPath, compressedPath);
        syncToDisk(compressedPath);
        published = std::rename(compressedPath.c_str(), destination.c_str()) == 0;
        if (published) {
            ::unlink(tempPath.c_str());
        } else {
            LOG_ERROR("Error copying file %s -> %s, reason %s", compressedPath.c_str(), destination.c_str(),
                      std::strerror(errno));
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
        syncToDisk(getReportFileLocation());
    } catch (const Vor::VorException& fault) {
        LOG_ERROR("Failed fetching report location: %s", fault.what());
    }
}

}  // namespace VorPm
