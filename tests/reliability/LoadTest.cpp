#include <fstream>
#include <sstream>
#include <thread>

#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/resource.h>

#include "Framework.h"

namespace VorTest {
namespace {

long memory(const std::string& what) {
    const std::string status = readFile("/proc/self/status");
    return std::stol(status.substr(status.find(what) + what.size()));
}

struct LoadTest : testing::TestWithParam<std::size_t> {
    ~LoadTest() override {
        std::printf("load: %zu GPs, %s, violations %d\n", engine.taken.size(), outcome.str().c_str(),
                    testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count());
    }
    void start(int jobCount, const std::string& kept) {
        for (jobs = 0; jobs < jobCount; ++jobs) {
            const std::string job = std::to_string(jobs), dn = pmRootDn + ",PmJob=" + job;
            engine.model->addObject(dn);
            for (const char* period : {"granularityPeriod", "reportingPeriod"})
                engine.model->commit({{dn, period, {std::int16_t{3}}}, {dn, "jobGroup", {job}}});
        }
        Vor::LoggingWrapper::instance().setLevel(6);
        EXPECT_EQ(Framework::initialize(engine, "50", kept) + Framework::start(), 0);
    }
    /// Pushes a GP whose values are its id; any thread.
    void push(std::size_t objects = 1, std::size_t types = 1) {
        std::unique_lock lock(pushing);
        const std::uint64_t id = engine.taken.emplace_back(++engine.announced),
                            end = minute * 1'000'000'000ULL;
        VorNode::MeasuredObject object{"Load=1", {}};
        for (std::size_t type = 0; type < types; ++type)
            object.values.push_back({"t" + std::to_string(type), static_cast<std::int64_t>(id)});
        const VorNode::MeasurementData data{{"Load", std::vector(objects, object)}};
        const std::string job = std::to_string(static_cast<int>(id) % jobs);
        engine.store.add(job, minute * 1'000'000, std::chrono::minutes(1),
                         std::make_unique<VorNode::GpRecords>(data, VorNode::PmVersions::Two));
        lock.unlock();
        VorOamSpiPmEventValue_1 event{id, job.c_str(), end - 60'000'000'000, end};
        EXPECT_EQ(engine.router.send("VorOamSpiPmEventTypeGpReady_2", &event), 1U);
    }
    void pushFromFourThreads(std::atomic<int> count, std::int64_t second) {
        WallClock::set((minute + second) * 1'000'000'000);
        std::vector<std::jthread> threads(4);
        for (std::jthread& thread : threads)
            thread = std::jthread([&] {
                while (count-- > 0)
                    push();
            });
    }
    void awaitReleases() {
        for (const std::uint64_t id : engine.taken)
            engine.await("releaseGp2 " + std::to_string(id));
    }
    /// What became of the GPs: none is written twice, told of twice, or both.
    std::string account() {
        std::set<std::uint64_t> written, told;
        for (const std::string& report : engine.reports()) {
            std::istringstream ids(report.substr(report.find(':') + 1));
            for (std::uint64_t id = 0; ids >> id;)
                EXPECT_TRUE(written.insert(id).second) << id;
        }
        std::size_t unopened = 0;
        for (const std::string& line : engine.messages()) {
            unopened +=
                line.starts_with("3 openFile") && line.ends_with(".xml for writing: Too many open files");
            for (const std::string mark : {"gpid ", "GP with ID ", "Failed writing report with id "}) {
                const std::size_t at = line.find(mark);
                const std::uint64_t id = at != line.npos ? std::stoull(line.substr(at + mark.size())) : 0;
                EXPECT_TRUE(id == 0 || (told.insert(id).second && !written.contains(id))) << line;
            }
        }
        outcome << written.size() << " " << told.size() << " " << unopened << " "
                << engine.taken.size() - written.size() - told.size() - unopened;
        return outcome.str();
    }

    std::mutex pushing;
    int jobs = 0;
    std::ostringstream outcome;
    PmEngine engine;
};

/// So many file descriptors beside those in use.
rlim_t descriptors(int count) {
    std::vector<int> spare;
    for (int i = 0; i < count; ++i)
        spare.push_back(::dup(0));
    std::for_each(spare.begin(), spare.end(), ::close);
    return static_cast<rlim_t>(spare.back()) + 1;
}

}  // namespace

TEST_P(LoadTest, AccountsForEveryGp) {
    const Texts row = goldenTable("load.txt").at(GetParam());
    int jobCount = 0, gps = 0, second = 0, late = 0, heldFetch = 0, files = 0, old = 0;
    std::size_t kept = 0;
    std::istringstream(row[1]) >> jobCount >> gps >> second >> late >> heldFetch >> files >> old >> kept;
    Poco::Event held;
    engine.getGp = [&, fetches = 0, genuine = engine.getGp](auto id, auto*& records) mutable {
        if (++fetches == heldFetch) {
            Vor::LoggingWrapper::instance().setLevel(Vor::LoggingWrapper::traceLevel);
            held.set();
            engine.await("interruptWriters <<");
            Vor::LoggingWrapper::instance().setLevel(6);
        }
        return genuine(id, records);
    };
    engine.root.createReportFolders();
    for (int number = 1000; number < 1000 + old; ++number) {
        const std::string name =
            "A2026010" + std::to_string(number / 500) + "." + std::to_string(number) + "-2400_Old.xml";
        writeFile(engine.root.reportFolder() / name,
                  "<measCollecFile><fileHeader/><measData/><fileFooter/></measCollecFile>\n");
        writeFile(engine.root.temporaryFolder() / name, "");
    }
    start(jobCount, std::to_string(kept));
    pushFromFourThreads(1, second);
    awaitReleases();
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit few{files > 0 ? descriptors(files) : limit.rlim_cur, limit.rlim_max};
    EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);
    pushFromFourThreads(gps - late - 1, second);
    EXPECT_TRUE(heldFetch == 0 || held.tryWait(deadline));
    pushFromFourThreads(late, 50);
    if (heldFetch == 0 || late > 0)
        awaitReleases();
    EXPECT_EQ(Framework::stop(), 0);
    ::setrlimit(RLIMIT_NOFILE, &limit);
    EXPECT_EQ(account(), row[2]);
    EXPECT_TRUE(old == 0 || TemporaryRoot::filesIn(engine.root.reportFolder()).size() == kept);
    EXPECT_EQ(TemporaryRoot::filesIn(engine.root.temporaryFolder()), Texts{});
}
INSTANTIATE_TEST_SUITE_P(Load, LoadTest, testing::Range<std::size_t>(0, goldenTable("load.txt").size()));

TEST_F(LoadTest, MemoryDoesNotGrowWithTheReport) {
    Poco::Event pushed, measured;
    long peak = 0, heap = 0;
    engine.getGp = [&, genuine = engine.getGp](auto id, auto*& records) {
        pushed.wait(deadline);
        std::ofstream("/proc/self/clear_refs") << "5";
        peak = memory("VmRSS:"), heap = static_cast<long>(::mallinfo2().uordblks);
        return genuine(id, records);
    };
    engine.releaseGp = [&, genuine = engine.releaseGp](auto id) {
        peak = memory("VmHWM:") - peak, heap = static_cast<long>(::mallinfo2().uordblks) - heap;
        measured.set();
        return genuine(id);
    };
    start(1, "1000");
    WallClock::set(minute * 1'000'000'000);
    for (const auto& [objects, types] : {std::pair(1'000U, 1'000U), {1'000'000U, 1U}}) {
        push(objects, types);
        pushed.set();
        EXPECT_TRUE(measured.tryWait(deadline));
#ifndef __SANITIZE_THREAD__  // which has a memory of its own
        EXPECT_LT(peak, 1'024) << "KiB";
        EXPECT_LT(heap, 256 * 1'024);
#endif
        outcome << objects << " x " << types << " values; ";
    }
    EXPECT_EQ(Framework::stop(), 0);
    const auto file = engine.root.reportFolder() / TemporaryRoot::filesIn(engine.root.reportFolder()).at(0);
    EXPECT_GT(std::filesystem::file_size(file), 90'000'000U);
    EXPECT_EQ(engine.messages(), Texts{});
}

}  // namespace VorTest
