// Names of report files: built, recognised and ordered here. Pure: any thread.
#pragma once

#include <cstdint>
#include <string>

#include "PmTimeTexts.h"

namespace VorPm {

/// What a report's name is made of; times in ns since the Unix epoch.
struct ReportIdentity {
    std::uint64_t beginTime;
    std::uint64_t endTime;
    TimeForm form;
    const std::string& meId;
    const std::string& jobGroup;
};

/// The file name of a report, without folder, such as A20170305.1415+0100-1430+0100_ME1_G1.xml.
std::string buildReportName(const ReportIdentity& report);

/// True when housekeeping has to count the file as a report.
bool isValidROPFileName(const std::string& fileName);

/// Rebuilds the ISO 8601 time stamps of a local-form name; the end takes the begin's date. Throws
/// `std::out_of_range` for a name that is too short.
void constructTimeStamp(const std::string& fileName, std::string& beginTime, std::string& endTime);

/// The text by which reports sort in the order of their periods. Throws `Vor::VorException` when the name's
/// times are no times, `std::out_of_range` when it is too short.
std::string generateKey(const std::string& fileName);

}  // namespace VorPm
