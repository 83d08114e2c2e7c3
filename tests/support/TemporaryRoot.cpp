#include "TemporaryRoot.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

namespace VorTest {

namespace fs = std::filesystem;

TemporaryRoot::TemporaryRoot() {
    std::string pattern = (fs::temp_directory_path() / "vor-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr)
        throw fs::filesystem_error("mkdtemp", pattern, std::error_code(errno, std::generic_category()));
    _path = pattern;
    for (const char* folder : {"internal", "no-backup", "bin"})
        fs::create_directory(_path / folder);
    answerWith("case \"$1 $2\" in\n\"file-system internalRoot\") echo '" + internalRoot().string() +
               "' ;;\n\"pso no-backup\") echo '" + noBackup().string() +
               "' ;;\n*) echo \"unknown command $1\" >&2; exit 1 ;;\nesac\n");
    const char* searchPath = std::getenv("PATH");
    ::setenv("PATH", ((_path / "bin").string() + ":" + (searchPath != nullptr ? searchPath : "")).c_str(), 1);
}

TemporaryRoot::~TemporaryRoot() {
    std::error_code ignored;
    fs::remove_all(_path, ignored);
}

void TemporaryRoot::createReportFolders() const {
    fs::create_directories(reportFolder());
    fs::create_directories(temporaryFolder());
}

void TemporaryRoot::answerWith(const std::string& shellScript) const {
    const fs::path command = _path / "bin" / "vorea";
    writeFile(command, "#!/bin/sh\n" + shellScript);
    fs::permissions(command, fs::perms::owner_all);
}

std::vector<std::string> TemporaryRoot::filesIn(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (!entry.path().filename().string().starts_with(".filem"))
            names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string readFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << path;
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

void writeFile(const fs::path& path, const std::string& bytes) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << bytes;
    EXPECT_TRUE(file.good()) << path;
}

}  // namespace VorTest
