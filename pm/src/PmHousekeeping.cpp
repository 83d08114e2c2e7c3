#include "PmHousekeeping.h"

#include <cerrno>
#include <cstring>
#include <map>
#include <string>
#include <system_error>

#include "PmFiles.h"
#include "PmLog.h"
#include "PmReportNames.h"
#include "PmStorage.h"
#include "VorException.h"

namespace VorPm {

namespace {

/// All that happens here is logged under this operation.
constexpr char operation[] = "performHousekeeping";

/// The names of reports by their ordering key, the oldest first.
using Reports = std::map<std::string, std::string>;

bool isMarker(const std::string& name) {
    return name == noDirectoryCreateMarker || name == noDirectoryDeleteMarker || name == noHousekeepingMarker;
}

/// Empty for a name that is not a report's; some names pass the test and still make no key.
std::string keyOf(const std::string& name) {
    try {
        return isValidROPFileName(name) ? generateKey(name) : std::string();
    } catch (...) {
        return {};
    }
}

/// Throws `std::system_error` when the folder cannot be read to its end.
Reports reportsIn(const PmDescriptor& folder) {
    Reports reports;
    for (const std::string& name : entriesOf(folder)) {
        if (isMarker(name)) {
            continue;
        }
        const std::string key = keyOf(name);
        if (key.empty()) {
            LOG_WARNING_IN(operation, "%s is not an ROP file and it will not be considered for housekeeping",
                           name.c_str());
        } else {
            reports.emplace(key, name);
        }
    }
    return reports;
}

/// A client may have removed the report already, and one that cannot be removed must not prevent the removal
/// of the others.
void removeReport(const PmDescriptor& folder, const std::string& folderPath, const std::string& name) {
    const int reason = removeEntry(folder, name);
    if (reason == ENOENT) {
        LOG_TRACE_IN(operation, "ROP file %s/%s does not exist", folderPath.c_str(), name.c_str());
    } else if (reason != 0) {
        LOG_WARNING_IN(operation, "Could not remove ROP file %s/%s: %s", folderPath.c_str(), name.c_str(),
                       std::strerror(reason));
    }
}

void removeOldest(const PmDescriptor& folder, const std::string& folderPath, const Reports& reports,
                  std::size_t count) {
    LOG_TRACE_IN(operation, "Removing %d old ROP files", static_cast<int>(count));
    for (auto oldest = reports.begin(); count > 0; ++oldest, --count) {
        removeReport(folder, folderPath, oldest->second);
    }
}

/// False, with a message, when the report folder cannot be read.
bool trimReportFolder(std::size_t maximum) {
    std::string path;
    try {
        path = getReportFileLocation();
        const PmDescriptor folder = openFolder(path);
        const Reports reports = reportsIn(folder);
        if (reports.size() > maximum) {
            removeOldest(folder, path, reports, reports.size() - maximum);
        }
        return true;
    } catch (const Vor::VorException& fault) {
        LOG_ERROR_IN(operation, "Failed fetching report location: %s", fault.what());
    } catch (...) {
        LOG_WARNING_IN(operation, "Could not access directory %s, for housekeeping", path.c_str());
    }
    return false;
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

void emptyTemporaryFolder() {
    std::string path;
    try {
        path = getReportFileTempLocation();
        emptyFolder(path);
    } catch (const Vor::VorException& fault) {
        LOG_ERROR_IN(operation, "Failed fetching temporary report location: %s", fault.what());
    } catch (...) {
        LOG_WARNING_IN(operation, "Could not remove temporary files in directory %s", path.c_str());
    }
}

}  // namespace

void performHousekeeping(unsigned short maxNoOfPmFiles) {
    LOG_TRACE(" >> ");
    if (trimReportFolder(maxNoOfPmFiles)) {
        emptyTemporaryFolder();
        LOG_TRACE(" << ");
    }
}

}  // namespace VorPm
