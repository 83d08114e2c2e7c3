#include "PmStorage.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "PmLog.h"
#include "VorException.h"
#include "VoreaWrapper.h"

namespace VorPm {

namespace {

void createReportFolder(const std::string& path) {
    Poco::File folder(path);
    if (folder.exists()) {
        return;
    }
    LOG_TRACE("Creating folder for report files");
    folder.createDirectories();
    for (const char* marker : {noHousekeepingMarker, noDirectoryDeleteMarker, noDirectoryCreateMarker}) {
        Poco::File(path + "/" + marker).createFile();
    }
}

void createTemporaryFolder(const std::string& path) {
    Poco::File folder(path);
    if (!folder.exists()) {
        LOG_TRACE("Creating folder for report temp files");
        folder.createDirectories();
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
    static const std::string location = getNoBackupFromVorEa() + reportFilesFolderName;
    return location;
}

std::string getReportFileTempLocation() {
    static const std::string location = getNoBackupFromVorEa() + temporaryFilesFolderName;
    return location;
}

std::string getReportSymlinkLocation() {
    static const std::string location = getInternalRootFromVorEa() + reportFilesFolderName;
    return location;
}

bool createFoldersForReportStorage() {
    std::string reportFolder;
    try {
        reportFolder = getReportFileLocation();
        createReportFolder(reportFolder);
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
        createTemporaryFolder(temporaryFolder);
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
            LOG_ERROR("Error %s when creating symlink %s for %s", std::strerror(errno), link.c_str(), target.c_str());
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
