// Names of report files: recognised and ordered here; a report's writer builds them. Pure: any thread.
#pragma once

#include <string>

#include "PmTimeTexts.h"

namespace VorPm {

/// True when housekeeping has to count the file as a report.
bool isValidROPFileName(std::string fileName);

/// Rebuilds the ISO 8601 time stamps of a local-form name; the end takes the begin's date. Throws
/// `std::out_of_range` for a name that is too short.
void constructTimeStamp(const std::string& fileName, std::string& beginTime, std::string& endTime);

/// The text by which reports sort in the order of their periods. Throws `Vor::VorException` when the name's
/// times are no times, `std::out_of_range` when it is too short.
std::string generateKey(const std::string& fileName);

}  // namespace VorPm
