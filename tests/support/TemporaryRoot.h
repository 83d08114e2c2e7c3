#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace VorTest {

/// A node's storage in a temporary folder of its own, with a `vorea` on the search path that answers from it;
/// removed at destruction. The component asks for its storage once per process, so there is one per process.
class TemporaryRoot {
  public:
    TemporaryRoot();
    ~TemporaryRoot();
    TemporaryRoot(const TemporaryRoot&) = delete;
    TemporaryRoot& operator=(const TemporaryRoot&) = delete;

    const std::filesystem::path& path() const { return _path; }
    std::filesystem::path internalRoot() const { return _path / "internal"; }
    std::filesystem::path noBackup() const { return _path / "no-backup"; }
    std::filesystem::path reportFolder() const { return noBackup() / "PerformanceManagementReportFiles"; }
    std::filesystem::path temporaryFolder() const {
        return noBackup() / "PerformanceManagementTemporaryFiles";
    }

    /// Creates the report folder and the temporary folder, empty and without markers.
    void createReportFolders() const;

    /// The body of the shell script that answers from now on; `$1` and `$2` are the query.
    void answerWith(const std::string& shellScript) const;

    /// The names in a folder, sorted; markers are left out.
    static std::vector<std::string> filesIn(const std::filesystem::path& folder);

  private:
    std::filesystem::path _path;
};

/// The bytes of a file; fails the test when it cannot be read.
std::string readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, const std::string& bytes);

}  // namespace VorTest
