#pragma once

namespace VorPm {

/// Keeps the `maxNoOfPmFiles` newest reports in the report folder and empties the temporary folder. Only
/// files with a report's name are counted and removed. The task manager's worker only, while no report is
/// being written. Throws when a report cannot be removed or the folder's iteration fails; everything else is
/// logged.
void performHousekeeping(unsigned short maxNoOfPmFiles);

}  // namespace VorPm
