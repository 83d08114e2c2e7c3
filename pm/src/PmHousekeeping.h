#pragma once

namespace VorPm {

/// Keeps the `maxNoOfPmFiles` newest reports in the report folder and empties the temporary folder. Only
/// files with a report's name are counted and removed. The task manager's worker only, while no report is
/// being written. Failures are logged; an entry that cannot be
/// removed does not prevent the removal of the others.
void performHousekeeping(unsigned short maxNoOfPmFiles);

}  // namespace VorPm
