#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

namespace VorNode {

/// True for a name that reports have: A20170305.1415+0100-1430+0100_ME1_G1.xml, the offsets left out in UTC,
/// .gz behind it when compressed.
bool isReportName(const std::string& fileName);

/// What a published report holds, for people to look at.
struct ReportFacts {
    std::uintmax_t bytes = 0;
    std::size_t blocks = 0;
    std::size_t values = 0;
    /// False when there is more text than is read; it may hold more blocks and values.
    bool isComplete = true;
};

/// Reads the first 64 MiB of the text of a report, plain or gzip, which is a regular file. Throws
/// `std::exception` when it cannot be read, such as when it is gone already.
ReportFacts readReportFacts(const std::filesystem::path& path);

}  // namespace VorNode
