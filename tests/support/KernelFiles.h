// What the kernel shows in proc and sys at some moments, and what the node measures between them.
#pragma once

#include <filesystem>
#include <map>
#include <string>

namespace VorTest {

/// The texts that belong to a class of the kernel's counters by their headings: "begin", "first" or "second"
/// and a file, such as "begin proc/stat", or "expect first" for what was measured until then.
std::map<std::string, std::string> kernelTexts(const std::string& className);

/// Writes the class's files of the moment below `root`.
void writeKernelFiles(const std::string& className, const std::string& moment,
                      const std::filesystem::path& root);

}  // namespace VorTest
