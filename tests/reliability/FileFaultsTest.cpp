// What becomes of reports when the file system fails, the process is killed, or the disk is full.
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <random>
#include <set>
#include <thread>

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Framework.h"
#include "ReportCheck.h"
#include "Supervisor.h"

namespace VorTest {
namespace {

namespace fs = std::filesystem;
using Calls = std::vector<SystemCall>;

enum class Closing { Stop, Timer };

/// What a call may fail with, the likeliest first; the long form of the experiments takes all.
const std::map<std::string, std::vector<int>> errors{{"open", {EMFILE, EACCES, ENOSPC, EROFS}},
                                                     {"write", {ENOSPC, EIO}},
                                                     {"ftruncate", {EIO, EROFS}},
                                                     {"fsync", {EIO, ENOSPC}},
                                                     {"close", {EIO, ENOSPC}},
                                                     {"getdents", {EIO}},
                                                     {"rename", {EXDEV, EIO, EACCES, EROFS}},
                                                     {"unlink", {EACCES, EIO, EROFS}},
                                                     {"mkdir", {ENOSPC, EACCES, EROFS}},
                                                     {"symlink", {ENOSPC, EACCES, EROFS}}};
constexpr std::array jobs{"Processor", "Transport", "Pressure", "Softirqs"};
const bool isLongForm = std::getenv("VOR_LONG") != nullptr;

Texts filesIn(const fs::path& folder) {
    return fs::exists(folder) ? TemporaryRoot::filesIn(folder) : Texts{};
}

int partialReports(const fs::path& folder) {
    int partial = 0;
    for (const std::string& name : filesIn(folder))
        try {
            partial += faultIn(readReport(folder / name)).empty() ? 0 : 1;
        } catch (const std::exception&) {
            ++partial;
        }
    return partial;
}

/// The component's first two phases, in a child process. Each makes a plain report of two GPs, a compressed
/// one and one of a group. Faults are over when the second begins.
class FileFaults : public testing::Test {
  protected:
    FileFaults() {
        // A child process closes every descriptor that it could have.
        const rlimit few{256, 256};
        ::setrlimit(RLIMIT_NOFILE, &few);
        engine.model->commit({{pmRootDn + ",PmJob=Pressure", "compressionType", {std::int16_t{0}}}});
        VorNode::MeasurementData data{{"Load", {{"Load=1", {}}}}};
        for (std::int64_t i = 0; i < 500; ++i)
            data.front().objects.front().values.push_back({"type" + std::to_string(i), i});
        large = std::make_unique<VorNode::GpRecords>(data, VorNode::PmVersions::OneAndTwo);
        // The second GP of the plain report is more than a stream holds back.
        engine.getGp = [this, getGp = engine.getGp](auto id, auto*& records) {
            const KelReturnT result = getGp(id, records);
            records = id % 4 == 2 ? large.get() : records;
            return result;
        };
    }

    ~FileFaults() override {
        // An experiment that did not take place has no figures.
        if (IsSkipped())
            return;
        std::cout << testing::UnitTest::GetInstance()->current_test_info()->name() << ": " << runs
                  << " runs, " << injected << " faults injected, " << unpublished
                  << " unpublished reports found, " << files << " files read, violations " << violations
                  << '\n';
    }

    /// Returns after the worker's first pass.
    KelReturnT start() {
        engine.happenings.erase("handleExpiredTimer <<");
        engine.happenings.erase(workerEnded);
        const KelReturnT result = Framework::start();
        if (result == VorReturnOk)
            engine.awaitUnlessEnded("handleExpiredTimer <<");
        return result;
    }

    void collect(std::int64_t end) {
        for (const char* job : jobs)
            engine.announce(job, end, end);
        for (const std::uint64_t id : engine.taken)
            engine.awaitUnlessEnded("releaseGp2 " + std::to_string(id));
    }

    /// Reports of the phase that ended then; all have to be whole.
    long reportsOf(const std::string& end) const {
        const Texts names = fs::exists(engine.root.reportFolder()) ? engine.reports() : Texts{};
        return std::count_if(names.begin(), names.end(),
                             [&](const auto& name) { return name.find(end) != std::string::npos; });
    }

    void live(Closing closing) {
        ASSERT_EQ(Framework::initialize(engine, closing == Closing::Timer ? "1" : "50", "3"), 0);
        const KelReturnT started = start();
        collect(0);
        if (closing == Closing::Timer)
            engine.await("performHousekeeping <<", 2);
        else
            EXPECT_EQ(Framework::stop(), 0);
        ::unlink(lifted.c_str());
        EXPECT_EQ(engine.log.count(3, "PM service is stopped"), 0);
        const Texts messages = engine.messages();
        const long told = std::count_if(messages.begin(), messages.end(),
                                        [](const auto& message) { return message.starts_with("3 "); });
        const long lost = 3 - reportsOf("-1315");
        EXPECT_TRUE(started == 0 ? lost <= told : lost == 3 && told > 0) << "a loss that no line tells of";
        EXPECT_TRUE(closing == Closing::Timer || start() == 0);
        collect(60);
        EXPECT_EQ(Framework::stop(), 0);
        EXPECT_EQ(reportsOf("-1316"), 3);
        EXPECT_EQ(filesIn(engine.root.reportFolder()).size(), 3U);
        EXPECT_EQ(filesIn(engine.root.temporaryFolder()), Texts{});
        EXPECT_EQ(engine.messages(), Texts{});
        engine.expectReleases();
    }

    /// Runs it and asks `judge` about the calls of the first phase on the component's folders, by their
    /// number.
    int run(Closing closing, const std::function<Verdict(std::size_t, const SystemCall&)>& judge) {
        std::size_t number = 0;
        bool isLifted = false;
        return supervise([&] { live(closing); },
                         [&](const SystemCall& call) {
                             isLifted = isLifted || call.path == lifted;
                             const bool concerns = call.path.starts_with(noBackup) ||
                                                   call.path.starts_with(engine.root.internalRoot().string());
                             return concerns && !isLifted ? judge(number++, call) : 0;
                         });
    }

    Calls record(Closing closing) {
        Calls calls;
        clean();
        EXPECT_EQ(run(closing, [&calls](auto, const auto& call) { return calls.push_back(call), 0; }), 0);
        return calls;
    }

    void failEachCall(Closing closing, const std::set<std::string>& names) {
        const Calls calls = record(closing);
        for (std::size_t target = 0; target < calls.size(); ++target) {
            const std::string& name = calls[target].name;
            const std::vector<int>& list = errors.at(name);
            for (std::size_t i = 0; names.contains(name) && i < (isLongForm ? list.size() : 1); ++i)
                for (const std::string& later : {std::string("none"), name, std::string("ftruncate")})
                    failCall(closing, target, calls[target], list[i], later);
        }
    }

    /// The call of that number fails, and later all calls of that name.
    void failCall(Closing closing, std::size_t target, const SystemCall& expected, int error,
                  const std::string& later) {
        bool met = false;
        clean();
        const int status = run(closing, [&](std::size_t number, const SystemCall& call) {
            met = met || (number == target && call.name == expected.name);
            const bool hit = number == target || (number > target && call.name == later);
            injected += hit ? 1 : 0;
            return hit ? error : 0;
        });
        ++runs;
        violations += status == 0 && met ? 0 : 1;
        EXPECT_TRUE(met) << "the calls came in another order";
        EXPECT_EQ(status, 0) << expected.name << ' ' << expected.path << ": " << std::strerror(error)
                             << ", later " << later;
    }

    /// After a kill there are whole reports only, and the next start tidies up.
    void lookAfterKill() {
        ++runs;
        violations += partialReports(engine.root.reportFolder());
        unpublished += filesIn(engine.root.temporaryFolder()).empty() ? 0 : 1;
        EXPECT_EQ(runInChild([this] {
                      Framework::initialize(engine);
                      EXPECT_EQ(start(), 0);
                      EXPECT_EQ(filesIn(engine.root.temporaryFolder()), Texts{});
                      EXPECT_EQ(Framework::stop(), 0);
                  }),
                  0);
    }

    void clean() const {
        for (const fs::path& folder : {engine.root.noBackup(), engine.root.internalRoot()})
            for (const auto& entry : fs::directory_iterator(folder))
                fs::remove_all(entry);
        prepare();
    }

    /// Work for housekeeping: a report above those that are kept, and a file left over.
    void fillFolders() const {
        engine.root.createReportFolders();
        writeFile(engine.root.temporaryFolder() / "left over", "");
        writeFile(engine.root.reportFolder() / "A20200305.1314-1315_ME1.xml", golden("report-utc.xml"));
    }

    PmEngine engine;
    /// What is there before the first phase.
    std::function<void()> prepare = [] {};
    std::unique_ptr<VorNode::GpRecords> large;
    const std::string noBackup = engine.root.noBackup(), lifted = noBackup + "/lifted";
    int runs = 0, injected = 0, unpublished = 0, files = 0, violations = 0;
};

/// Needs a kernel that hands over system calls.
class SupervisedFaults : public FileFaults {
  protected:
    void SetUp() override {
        if (!canSupervise())
            GTEST_SKIP() << "system calls cannot be supervised here";
    }
};

}  // namespace

TEST_F(SupervisedFaults, LoseNoReportSilentlyWhicheverCallFails) {
    failEachCall(Closing::Stop, {"open", "write", "ftruncate", "fsync", "close", "getdents", "rename",
                                 "unlink", "mkdir", "symlink"});
}

TEST_F(SupervisedFaults, DisturbHousekeepingForOnePhaseOnly) {
    prepare = [this] { fillFolders(); };
    failEachCall(Closing::Stop, {"unlink", "getdents"});
}

TEST_F(SupervisedFaults, AreOverWithTheNextPhaseAfterTheTimer) {
    failEachCall(Closing::Timer, {"rename", "fsync"});
}

TEST_F(SupervisedFaults, LeaveWholeReportsAfterAKill) {
    const Calls calls = record(Closing::Stop);
    for (std::size_t target = 0; target < calls.size(); ++target) {
        clean();
        run(Closing::Stop, [&](std::size_t number, const auto&) { return number == target ? killed : 0; });
        lookAfterKill();
    }
    std::mt19937 random(20260305);
    std::uniform_int_distribution<long> microseconds(1'000, 200'000);
    const auto workUnderLoad = [this] {
        Framework::initialize(engine);
        for (;;) {
            start();
            for (std::size_t i = 0; i < 20; ++i)
                engine.announce(jobs[i % jobs.size()], 0, 0);
            engine.await("releaseGp2 " + std::to_string(engine.announced));
            Framework::stop();
        }
    };
    for (int kills = 0; kills < (isLongForm ? 200 : 20); ++kills) {
        runInChild(workUnderLoad, microseconds(random));
        lookAfterKill();
    }
    EXPECT_EQ(violations, 0);
    EXPECT_GE(unpublished, isLongForm ? 50 : 30);
}

TEST_F(SupervisedFaults, WouldShowPublishingByCopy) {
    const std::string report = golden("report-utc.xml");
    const auto copy = [&] {
        std::ofstream to(engine.root.reportFolder() / "A20260305.1314-1315_ME1.xml");
        for (const char byte : report)
            to << byte << std::flush;
    };
    int writes = 0;
    engine.root.createReportFolders();
    supervise(copy, [&](const auto& call) { return call.name == "write" && ++writes == 100 ? killed : 0; });
    EXPECT_EQ(partialReports(engine.root.reportFolder()), 1);
}

TEST_F(SupervisedFaults, FindEveryReportOnDiskBeforeItsName) {
    for (const Closing closing : {Closing::Stop, Closing::Timer}) {
        const Calls calls = record(closing);
        const auto lastBefore = [&calls](std::size_t end, const std::set<std::string>& names,
                                         const std::string& path) {
            std::size_t last = 0;
            for (std::size_t i = 0; i < end; ++i)
                last = names.contains(calls[i].name) && calls[i].path == path ? i + 1 : last;
            return last;
        };
        std::size_t lastRename = 0;
        for (std::size_t i = 0; i < calls.size(); ++i) {
            if (calls[i].name != "rename")
                continue;
            lastRename = i + 1;
            ++files;
            EXPECT_TRUE(calls[i].newPath.starts_with(engine.root.reportFolder().string()));
            EXPECT_GT(lastBefore(i, {"fsync"}, calls[i].path),
                      lastBefore(i, {"write", "ftruncate"}, calls[i].path));
        }
        EXPECT_GT(lastBefore(calls.size(), {"fsync"}, engine.root.reportFolder()), lastRename);
    }
    EXPECT_EQ(files, 6);
}

TEST_F(FileFaults, SurviveAFullDisk) {
    constexpr int cannotMount = 77;
    constexpr std::size_t pagesOfDisk = 40, pageSize = 4096;
    const fs::path log = engine.root.path() / "messages";
    const auto liveOnSmallDisk = [&](std::size_t room) {
        if (::unshare(CLONE_NEWNS) != 0 || ::mount("", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            ::mount("tmpfs", noBackup.c_str(), "tmpfs", 0, "size=160k") != 0)
            ::_exit(cannotMount);
        engine.log.onLine = [&, onLine = engine.log.onLine](const LogLine& line) {
            onLine(line);
            std::ofstream(log, std::ios::app) << line.operation << ' ' << line.text << '\n';
        };
        writeFile(lifted, std::string((pagesOfDisk - room) * pageSize, ' '));
        live(Closing::Stop);
    };
    for (std::size_t room = 0; room < pagesOfDisk; ++room, ++runs) {
        const int status = runInChild([&] { liveOnSmallDisk(room); });
        if (WEXITSTATUS(status) == cannotMount)
            GTEST_SKIP() << "the right to mount a small disk is missing";
        violations += status == 0 ? 0 : 1;
        EXPECT_EQ(status, 0) << room;
    }
    const std::string messages = readFile(log);
    for (const char* place : {"write IO failure writing gp", "finalizeReport IO failure writing gp",
                              "publishGzipReport Unknown exception while publishing report"})
        EXPECT_NE(messages.find(place), std::string::npos) << place;
}

// A client that takes what it finds, and deletes some of it.
TEST_F(FileFaults, ShowAPollingClientWholeReportsOnly) {
    std::set<std::string> seen;
    const auto poll = [&](const std::stop_token& end) {
        for (std::size_t before = 1; before != seen.size() || !end.stop_requested();) {
            before = seen.size();
            for (const std::string& name : filesIn(engine.root.reportFolder())) {
                const fs::path report = engine.root.reportFolder() / name;
                if (!seen.insert(name).second)
                    continue;
                violations += faultIn(readReport(report)).empty() ? 0 : 1;
                if (seen.size() % 3 == 0)
                    fs::remove(report);
            }
        }
    };
    engine.root.createReportFolders();
    ASSERT_EQ(Framework::initialize(engine), 0);
    std::jthread client(poll);
    const int phases = isLongForm ? 300 : 100;
    for (int phase = 0; phase < phases; ++phase) {
        EXPECT_EQ(start(), 0);
        collect(60 * phase);
        EXPECT_EQ(Framework::stop(), 0);
        EXPECT_EQ(engine.messages(), Texts{});
    }
    client.request_stop();
    client.join();
    files = static_cast<int>(seen.size());
    EXPECT_EQ(files, 3 * phases);
    EXPECT_EQ(violations, 0);
}

TEST_F(FileFaults, CreateNothingOutsideTheFolders) {
    ::umask(0027);
    const fs::path victim = engine.root.path() / "victim";
    writeFile(victim, "untouched");
    const auto everything = [this] {
        Texts paths;
        for (const auto& entry : fs::recursive_directory_iterator(engine.root.path()))
            if (!entry.path().string().starts_with(noBackup + "/PerformanceManagement"))
                paths.push_back(entry.path());
        std::sort(paths.begin(), paths.end());
        return paths;
    };
    clean();
    EXPECT_EQ(runInChild([this] { live(Closing::Stop); }), 0);
    const Texts expected = everything();
    for (const std::string& name : filesIn(engine.root.reportFolder()))
        EXPECT_EQ(fs::status(engine.root.reportFolder() / name).permissions(), fs::perms(0640)) << name;
    EXPECT_EQ(fs::status(engine.root.reportFolder()).permissions(), fs::perms(0750));
    for (const std::string& hostile :
         {std::string("a/b"), std::string("../../victim"), std::string(".."), std::string("\x01\n\x7f"),
          std::string("\xff\xc3"), std::string(10'000, 'x'), std::string("<&\"'>")}) {
        ++runs;
        clean();
        engine.model->commit({{pmRootDn + ",PmJob=Softirqs", "jobGroup", {hostile}},
                              {elementDn, "networkManagedElementId", {runs % 2 == 0 ? hostile : "ME1"}}});
        runInChild([&] {
            Framework::initialize(engine);
            start();
            ::symlink(victim.c_str(),
                      (engine.root.temporaryFolder() / "A20260305.1314+0000-1315+0000_ME1.xml").c_str());
            collect(0);
            Framework::stop();
        });
        EXPECT_EQ(everything(), expected) << hostile;
        EXPECT_EQ(readFile(victim), "untouched");
        // Ids and groups are written as they are, so not all of these are XML; but they are whole.
        for (const std::string& name : filesIn(engine.root.reportFolder()))
            violations +=
                readReport(engine.root.reportFolder() / name).ends_with("</measCollecFile>\n") ? 0 : 1;
    }
    EXPECT_EQ(violations, 0);
}

}  // namespace VorTest
