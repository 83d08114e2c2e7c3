#include "PmStorage.h"

#include <cerrno>
#include <cstring>

#include <Poco/Exception.h>
#include <Poco/Mutex.h>
#include <sys/stat.h>
#include <unistd.h>

#include "PmLog.h"
#include "VorException.h"
#include "VoreaWrapper.h"

namespace VorPm {

namespace {

/// A folder below one of the platform's roots, computed at first use and then kept. Any thread; the first one
/// asks the platform while others wait.
class Location {
  public:
    Location(std::string (&root)(), const char* name) : _root(root), _name(name) {}

    std::string get() {
        Poco::FastMutex::ScopedLock lock(_mutex);
        if (_path.empty()) {
            _path = _root() + _name;
        }
        return _path;
    }

  private:
    std::string (&_root)();
    const char* const _name;
    /// Guards the path.
    Poco::FastMutex _mutex;
    std::string _path;
};

// Made when the library is loaded, and so destroyed after the component, which publishes what is open when it
// is destroyed.
Location reportFileLocation(getNoBackupFromVorEa, reportFilesFolderName);
Location reportFileTempLocation(getNoBackupFromVorEa, temporaryFilesFolderName);
Location reportSymlinkLocation(getInternalRootFromVorEa, reportFilesFolderName);

void createReportFolder(const std::string& path) {
    Poco::File(path).createDirectories();
    for (const char* marker : {noHousekeepingMarker, noDirectoryDeleteMarker, noDirectoryCreateMarker}) {
        Poco::File(path + "/" + marker).createFile();
    }
}

/// The folder is emptied regularly, so a link to somebody else's folder is refused.
void requireFolderItself(const std::string& path) {
    const Poco::File folder(path);
    if (folder.isLink() || !folder.isDirectory()) {
        throw Poco::FileException(path);
    }
}

}  // namespace

std::string getInternalRootFromVorEa() {
    std::string path;
    if (!VoreaWrapper().readInternalRoot(path)) {
        LOG_ERROR("readInternalRoot could not get internalroot path");
    }
    return path;
}

std::string getNoBackupFromVorEa() {
    LOG_TRACE(" >> ");
    std::string path;
    if (!VoreaWrapper().readNobackupPath(path)) {
        LOG_ERROR("getNobackupPath could not get path to nobackup");
    }
    LOG_TRACE(" << Returning nobackup path: %s", path.c_str());
    return path;
}

std::string getReportFileLocation() {
    return reportFileLocation.get();
}

std::string getReportFileTempLocation() {
    return reportFileTempLocation.get();
}

std::string getReportSymlinkLocation() {
    return reportSymlinkLocation.get();
}

bool createFoldersForReportStorage() {
    std::string reportFolder;
    try {
        reportFolder = getReportFileLocation();
        if (!Poco::File(reportFolder).exists()) {
            LOG_TRACE("Creating folder for report files");
            createReportFolder(reportFolder);
        }
    } catch (const Vor::VorException& fault) {
        LOG_ERROR("Failed fetching report location: %s", fault.what());
        return false;
    } catch (...) {
        LOG_ERROR("Error creating directory tree: %s", reportFolder.c_str());
        return false;
    }
    std::string temporaryFolder;
    try {
        temporaryFolder = getReportFileTempLocation();
        if (!Poco::File(temporaryFolder).exists()) {
            LOG_TRACE("Creating folder for report temp files");
            Poco::File(temporaryFolder).createDirectories();
        }
        requireFolderItself(temporaryFolder);
    } catch (const Vor::VorException& fault) {
        LOG_ERROR("Failed fetching temporary report location: %s", fault.what());
        return false;
    } catch (...) {
        LOG_ERROR("Error creating directory tree: %s", temporaryFolder.c_str());
        return false;
    }
    return Poco::File(reportFolder).exists() && Poco::File(temporaryFolder).exists();
}

bool createSymLinkForNobackup() {
    try {
        const std::string target = getReportFileLocation();
        const std::string internalRoot = getInternalRootFromVorEa();
        if (internalRoot.empty()) {
            LOG_ERROR("Failed fetching internalroot, symlink will fail");
            return false;
        }
        const std::string link = internalRoot + "/" + reportFilesFolderName;
        const bool linked = ::symlink(target.c_str(), link.c_str()) == 0 || errno == EEXIST;
        if (!linked) {
            LOG_ERROR("Error %s when creating symlink %s for %s", std::strerror(errno), link.c_str(),
                      target.c_str());
        }
        LOG_TRACE(" << symbolic path: %s", link.c_str());
        return linked;
    } catch (const Vor::VorException& fault) {
        LOG_ERROR("Failed fetching nobackup/internalroot: %s", fault.what());
        return false;
    }
}

void modifyFilePermissions(Poco::File file, unsigned int mode) {
    if (::chmod(file.path().c_str(), mode) != 0) {
        LOG_ERROR("Error occurred while modifying the permissions of %s", file.path().c_str());
    }
}

void modifyFileOwnerAndGroup(Poco::File file, unsigned int owner, unsigned int group) {
    if (::chown(file.path().c_str(), owner, group) != 0) {
        LOG_ERROR("Error occurred while changing the group of directory %s", file.path().c_str());
    }
}

}  // namespace VorPm
