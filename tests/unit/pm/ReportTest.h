// What the tests of reports, their names and their storage share.
#pragma once

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <Poco/AutoPtr.h>
#include <gmock/gmock.h>
#include <sys/resource.h>

#include "Golden.h"
#include "LogCapture.h"
#include "PmGpData.h"
#include "ReportCheck.h"
#include "TemporaryRoot.h"

namespace VorTest {

using namespace VorPm;
using testing::ElementsAre;
using testing::StartsWith;
namespace fs = std::filesystem;

/// Lets no file grow beyond so many bytes from here on.
inline void limitFileSize(rlim_t bytes = RLIM_INFINITY) {
    ::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{bytes, RLIM_INFINITY};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
}

/// A GP of the job "J" + `id`, as the worker hands it to the writer; the records are the test's.
inline Poco::AutoPtr<PmGpData> makeGp(std::uint64_t id, const VorOamSpiPmGpData_2* data2,
                                      const VorOamSpiPmGpData_1* data1 = nullptr) {
    static VorOamSpiPm_2 service{{}, nullptr, [](std::uint64_t) -> KelReturnT { return VorReturnOk; }};
    const std::string job = "J" + std::to_string(id);
    Poco::AutoPtr<PmGpData> gp(new PmGpData({id, job.c_str(), 0, 0}, &service));
    gp->_pmData = data1;
    gp->_pmData2 = data2;
    gp->_granularityPeriod = gp->_reportingPeriod = TimePeriod::Min15;
    return gp;
}

/// 2017-03-05T13:00:00Z and a quarter of an hour later.
inline constexpr std::uint64_t beginTime = 1'488'718'800'000'000'000;
inline constexpr std::uint64_t endTime = 1'488'719'700'000'000'000;

/// A node's storage and log.
class StorageTest : public testing::Test {
  protected:
    /// "level operation text" of the messages since the last call.
    Texts messages() {
        Texts texts;
        for (const LogLine& line : log.messages()) {
            texts.push_back(std::to_string(line.level) + " " + line.operation + " " + line.text);
        }
        log.clear();
        return texts;
    }

    using Operation = std::function<std::string(const std::string& argument)>;

    /// For each row of a golden table: prepares empty folders by a shell script, runs an operation, and
    /// compares what it answers or throws, what lies in the folders then, and the messages. R and T are the
    /// report folder and the temporary folder, "." is the root.
    void expectRows(const std::string& table, const std::map<std::string, Operation>& operations) {
        fs::current_path(root.path());
        ::setenv("R", reportFolder.c_str(), 1);
        ::setenv("T", temporaryFolder.c_str(), 1);
        for (const Texts& row : goldenTable(table)) {
            EXPECT_EQ(std::system(("rm -rf no-backup internal/*; mkdir -p $R $T; " + row[0]).c_str()), 0)
                << row[0];
            messages();
            std::string answer;
            try {
                const std::size_t blank = row[1].find(' ');
                answer = operations.at(row[1].substr(0, blank))(row[1].substr(blank + 1));
            } catch (const std::exception& fault) {
                answer = std::string("throws ") + fault.what();
            }
            Texts outcome = messages();
            outcome.insert(outcome.begin(), {row[0], row[1], answer, listing()});
            for (std::string& text : outcome) {
                Poco::replaceInPlace(text, reportFolder, std::string("R"));
                Poco::replaceInPlace(text, temporaryFolder, std::string("T"));
                Poco::replaceInPlace(text, root.path().string(), std::string("."));
                Poco::replaceInPlace(text, std::string("\n"), std::string("\\n"));
            }
            EXPECT_EQ(outcome, row);
        }
    }

    /// Files with their text, links with their target, and empty folders.
    std::string listing() const {
        Texts entries;
        for (const auto& entry : fs::recursive_directory_iterator(root.noBackup())) {
            const std::string& path = entry.path();
            if (entry.is_symlink()) {
                entries.push_back(path + "->" + fs::read_symlink(path).string());
            } else if (entry.is_regular_file()) {
                entries.push_back(path + "=" + readReport(path));
            } else if (fs::is_empty(path)) {
                entries.push_back(path + "/");
            }
        }
        std::sort(entries.begin(), entries.end());
        return Poco::cat(std::string(" "), entries.begin(), entries.end());
    }

    TemporaryRoot root;
    const std::string reportFolder = root.reportFolder();
    const std::string temporaryFolder = root.temporaryFolder();
    LogCapture log;
};

}  // namespace VorTest
