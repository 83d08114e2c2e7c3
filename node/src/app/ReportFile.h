#pragma once

#include <cstdint>
#include <filesystem>

namespace VorNode {

/// What a published report holds, for people to look at.
struct ReportFacts {
    std::uintmax_t bytes = 0;
    std::size_t blocks = 0;
    std::size_t values = 0;
};

/// Reads a report, plain or gzip. Throws `std::exception` when it cannot be read, such as when it is gone
/// already.
ReportFacts readReportFacts(const std::filesystem::path& path);

}  // namespace VorNode
