#include "PmHousekeeping.h"

#include <map>
#include <string>
#include <vector>

#include <Poco/DirectoryIterator.h>
#include <Poco/Exception.h>
#include <Poco/File.h>
#include <Poco/Path.h>

#include "PmLog.h"
#include "PmReportNames.h"
#include "PmStorage.h"
#include "VorException.h"

namespace VorPm {

namespace {

/// Reports by their ordering key, the oldest first.
using Candidates = std::map<std::string, Poco::File>;

bool isMarker(const std::string& name) {
    return name == noDirectoryCreateMarker || name == noDirectoryDeleteMarker || name == noHousekeepingMarker;
}

/// False when nothing of that name was there any more: a client may delete what it has fetched.
bool removeIfPresent(Poco::File file) {
    try {
        // Without asking first whether it exists: a link that leads nowhere does not, and has to go all the
        // same.
        file.remove();
        return true;
    } catch (const Poco::FileNotFoundException&) {
        return false;
    }
}

void emptyFolder(const std::string& path) {
    std::vector<std::string> names;
    Poco::File(path).list(names);
    for (const std::string& name : names) {
        removeIfPresent(Poco::File(path + "/" + name));
    }
}

}  // namespace

void performHousekeeping(unsigned short maxNoOfPmFiles) {
    LOG_TRACE(" >> ");
    std::string folder;
    Poco::DirectoryIterator entry;
    try {
        folder = getReportFileLocation();
        entry = Poco::DirectoryIterator(Poco::Path(folder));
    } catch (const Vor::VorException& fault) {
        LOG_ERROR("Failed fetching report location: %s", fault.what());
        return;
    } catch (...) {
        LOG_WARNING("Could not access directory %s, for housekeeping", folder.c_str());
        return;
    }
    try {
        Candidates candidates;
        for (const Poco::DirectoryIterator end; entry != end; ++entry) {
            const std::string& name = entry.name();
            if (isMarker(name)) {
                continue;
            }
            if (!isValidROPFileName(name)) {
                LOG_WARNING("%s is not an ROP file and it will not be considered for housekeeping",
                            name.c_str());
                continue;
            }
            candidates.emplace(generateKey(name), Poco::File(folder + "/" + name));
        }
        if (candidates.size() > maxNoOfPmFiles) {
            std::size_t excess = candidates.size() - maxNoOfPmFiles;
            LOG_TRACE("Removing %d old ROP files", static_cast<int>(excess));
            for (auto oldest = candidates.begin(); excess > 0; ++oldest, --excess) {
                if (!removeIfPresent(oldest->second)) {
                    LOG_TRACE("ROP file %s does not exist", oldest->second.path().c_str());
                }
            }
        }
    } catch (const Vor::VorException&) {
        return;
    }
    std::string temporaryFolder;
    try {
        temporaryFolder = getReportFileTempLocation();
        emptyFolder(temporaryFolder);
    } catch (const Vor::VorException& fault) {
        LOG_ERROR("Failed fetching temporary report location: %s", fault.what());
    } catch (...) {
        LOG_WARNING("Could not remove temporary files in directory %s", temporaryFolder.c_str());
    }
    LOG_TRACE(" << ");
}

}  // namespace VorPm
