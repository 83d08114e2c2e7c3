#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace VorTest {

/// What is wrong with a report's bytes, empty when nothing is: it has to be a well-formed measCollecFile with
/// header and footer, and each value a measurement type of its class, numbered once.
std::string faultIn(const std::string& report);

/// A report's values as "class object type value", the type being the one that has the value's number `p`.
std::vector<std::string> valuesByNumber(const std::string& report);

/// The same, as collectors read them that ignore the numbers of types: the type at place `p` of the class's
/// list, the values of each object counted from 1.
std::vector<std::string> valuesByPlace(const std::string& report);

/// The text of a report file; unpacked when its name ends in ".gz".
std::string readReport(const std::filesystem::path& path);

}  // namespace VorTest
