// Publishing: moves finished reports from the temporary folder into the report folder, where clients see
// them. The task manager's worker only. A client never sees a partial file: whatever appears in the report
// folder gets there by a rename. Failures are logged.
#pragma once

#include <string>

namespace VorPm {

/// Moves the file; a report of that name is replaced. True when it lies in the report folder.
bool publishReport(const std::string& tempPath);

/// Moves the file compressed, with ".gz" appended to its name. True when the compressed file lies in the
/// report folder; a report that cannot be compressed is published plain, with false.
bool publishGzipReport(const std::string& tempPath);

/// Makes the names of the reports published so far durable. A failure is a warning and nothing else.
void syncReportFolder();

}  // namespace VorPm
