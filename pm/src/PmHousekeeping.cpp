#include "PmHousekeeping.h"

#include <cerrno>
#include <cstring>
#include <map>
#include <string>
#include <system_error>
#include <vector>

#include "PmFiles.h"
#include "PmLog.h"
#include "PmReportNames.h"
#include "PmStorage.h"
#include "VorException.h"

namespace VorPm {

namespace {

/// The names of reports by their ordering key, the oldest first.
using Reports = std::map<std::string, std::string>;

struct FolderContents {
    Reports reports;
    std::vector<std::string> strays;
};

bool isMarker(const std::string& name) {
    return name == noDirectoryCreateMarker || name == noDirectoryDeleteMarker || name == noHousekeepingMarker;
}

/// Empty for a name that is not a report's; that can show only when the key is made.
std::string keyOf(const std::string& name) {
    try {
        return isValidROPFileName(name) ? generateKey(name) : std::string();
    } catch (...) {
        return {};
    }
}

FolderContents sortOut(const std::vector<std::string>& names) {
    FolderContents contents;
    for (const std::string& name : names) {
        if (isMarker(name)) {
            continue;
        }
        const std::string key = keyOf(name);
        if (key.empty()) {
            contents.strays.push_back(name);
        } else {
            contents.reports.emplace(key, name);
        }
    }
    return contents;
}

/// The names of the oldest reports, down to those that are kept.
std::vector<std::string> excessOf(const Reports& reports, std::size_t kept) {
    std::vector<std::string> names;
    for (auto oldest = reports.begin(); names.size() + kept < reports.size(); ++oldest) {
        names.push_back(oldest->second);
    }
    return names;
}

/// Throws `std::system_error` at the first entry that cannot be removed.
void emptyFolder(const std::string& path) {
    const PmDescriptor folder = openFolderItself(path);
    for (const std::string& name : entriesOf(folder)) {
        const int reason = removeEntry(folder, name);
        if (reason != 0 && reason != ENOENT) {
            throw std::system_error(reason, std::generic_category());
        }
    }
}

}  // namespace

void performHousekeeping(unsigned short maxNoOfPmFiles) {
    LOG_TRACE(" >> ");
    std::string path;
    try {
        path = getReportFileLocation();
        const PmDescriptor folder = openFolder(path);
        const FolderContents contents = sortOut(entriesOf(folder));
        for (const std::string& name : contents.strays) {
            LOG_WARNING("%s is not an ROP file and it will not be considered for housekeeping", name.c_str());
        }
        const std::vector<std::string> excess = excessOf(contents.reports, maxNoOfPmFiles);
        if (!excess.empty()) {
            LOG_TRACE("Removing %d old ROP files", static_cast<int>(excess.size()));
        }
        for (const std::string& name : excess) {
            // A client may delete what it has fetched, and what cannot be removed must not keep the others.
            const int reason = removeEntry(folder, name);
            if (reason == ENOENT) {
                LOG_TRACE("ROP file %s/%s does not exist", path.c_str(), name.c_str());
            } else if (reason != 0) {
                LOG_WARNING("Could not remove ROP file %s/%s: %s", path.c_str(), name.c_str(),
                            std::strerror(reason));
            }
        }
    } catch (const Vor::VorException& fault) {
        LOG_ERROR("Failed fetching report location: %s", fault.what());
        return;
    } catch (...) {
        LOG_WARNING("Could not access directory %s, for housekeeping", path.c_str());
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
