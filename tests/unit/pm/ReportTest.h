// What the tests of reports and of their folders share.
#pragma once

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <string>

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
struct StorageTest : testing::Test {
    Texts messages() { return log.takeMessages(); }

    TemporaryRoot root;
    const std::string reportFolder = root.reportFolder(), temporaryFolder = root.temporaryFolder();
    LogCapture log;
};

/// The same, with a look at the folders.
struct Folders : StorageTest {
    /// Files with their text, links with their target, and empty folders.
    std::string listing() const {
        Texts entries;
        std::error_code none;
        for (const auto& entry : fs::recursive_directory_iterator(root.noBackup(), none)) {
            const std::string& path = entry.path();
            if (entry.is_symlink())
                entries.push_back(path + "->" + fs::read_symlink(path).string());
            else if (entry.is_regular_file())
                entries.push_back(path + "=" + readReport(path));
            else if (fs::is_empty(path))
                entries.push_back(path + "/");
        }
        std::sort(entries.begin(), entries.end());
        return Poco::cat(std::string(" "), entries.begin(), entries.end());
    }
    /// With R for the report folder, T for the temporary folder and "." for the root.
    std::string shortened(std::string text) const {
        for (const auto& [path, letter] : {std::pair(reportFolder, "R"),
                                           {temporaryFolder, "T"},
                                           {root.path().string(), "."},
                                           {"\n", "\\n"}})
            Poco::replaceInPlace(text, path, std::string(letter));
        return text;
    }
};

}  // namespace VorTest
