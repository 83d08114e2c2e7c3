#pragma once

#include <filesystem>
#include <string>

namespace VorTest {

/// What is wrong with a report's bytes, empty when nothing is: it has to be a well-formed measCollecFile with
/// header and footer, and each value a measurement type of its class, numbered once.
std::string faultIn(const std::string& report);

/// The text of a report file; unpacked when its name ends in ".gz".
std::string readReport(const std::filesystem::path& path);

}  // namespace VorTest
