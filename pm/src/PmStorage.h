// Where reports live: the report folder, the temporary folder, and the link to the report folder. Any thread.
#pragma once

#include <string>

#include <Poco/File.h>

namespace VorPm {

inline constexpr char reportFilesFolderName[] = "PerformanceManagementReportFiles";
inline constexpr char temporaryFilesFolderName[] = "PerformanceManagementTemporaryFiles";
inline constexpr char noHousekeepingMarker[] = ".filemnohousekeeping";
inline constexpr char noDirectoryDeleteMarker[] = ".filemnodirectorydelete";
inline constexpr char noDirectoryCreateMarker[] = ".filemnodirectorycreate";

/// The roots, as the platform tells them at this call; a path that does not exist is returned with a message.
/// Throws `Vor::VorException` when the platform command fails.
std::string getInternalRootFromVorEa();
std::string getNoBackupFromVorEa();

/// The locations, without trailing "/": asked of the platform at first use, the same from then on as long as
/// the library stays loaded. Throw like the roots; a call after a failed one asks again.
std::string getReportFileLocation();
std::string getReportFileTempLocation();
std::string getReportSymlinkLocation();

/// Creates the report folder, with its marker files, and the temporary folder where they are missing. True
/// when both exist at the end; failures are logged.
bool createFoldersForReportStorage();

/// Links the report folder under the internal root; whatever stands at the link's path already is left there.
/// True when something stands there at the end; failures are logged.
bool createSymLinkForNobackup();

/// Failures of these two are logged only.
void modifyFilePermissions(Poco::File file, unsigned int mode);
void modifyFileOwnerAndGroup(Poco::File file, unsigned int owner, unsigned int group);

}  // namespace VorPm
