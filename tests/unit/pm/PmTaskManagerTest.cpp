#include <cstdlib>
#include <filesystem>
#include <new>

#include <gtest/gtest.h>

#include "LoggingWrapper.h"
#include "PmEngine.h"

/// How many allocations of the thread succeed before one fails. That one only; while it is negative, none.
static thread_local int allocationsLeft = -1;

[[gnu::noinline]] void* operator new(std::size_t size) {
    void* const memory = allocationsLeft >= 0 && allocationsLeft-- == 0 ? nullptr : std::malloc(size);
    return memory != nullptr ? memory : throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

namespace VorTest {
namespace {

const std::string report0 = "A20260305.1310+0000-1315+0000_vor-node.xml:";
const std::string report1 = "A20260305.1314+0000-1315+0000_vor-node.xml:";
const std::string report2 = "A20260305.1315+0000-1316+0000_vor-node.xml:";

class PmTaskManagerTurn : public testing::TestWithParam<std::size_t> {};

}  // namespace

TEST(PmTaskManager, JudgesAnnouncementsByTheClockAndArmsTheTimerOnce) {
    PmEngine engine;
    std::size_t queued = 0;
    for (const Texts& row : goldenTable("announcements.txt")) {
        SCOPED_TRACE(row[1] + " " + row[2]);
        if (!row[0].empty())
            engine.renew(row[0]), queued = 0;
        ASSERT_EQ(engine.announce("Processor", std::stoll(row[1]), std::stoll(row[2])), 0);
        queued += std::stoul(row[3]);
        EXPECT_EQ(engine.tasks->queueSize(), queued);
        std::string timers;
        for (const LogLine& line : engine.log.lines())
            timers += line.text.starts_with("Started timer") ? line.text : "";
        EXPECT_EQ(timers, row[4]);
        EXPECT_EQ(engine.messages(), Texts(row.begin() + 5, row.end()));
    }
}

TEST(PmTaskManager, PublishesTheReportsOfEachPhaseTogether) {
    PmEngine engine;
    engine.getGp = [&engine, fetch = engine.getGp](auto id, auto*& records) {
        if (id == 5) {
            engine.await("announced");
            EXPECT_EQ(engine.reports(), Texts{}) << "nothing before the phase has ended";
            engine.await("onTimer <<");
            EXPECT_EQ(engine.tasks->queueSize(), 2U);
        }
        return fetch(id, records);
    };
    engine.renew("50", "2");
    writeFile(engine.root.temporaryFolder() / "left over", "");
    engine.startWorker();
    EXPECT_EQ(TemporaryRoot::filesIn(engine.root.temporaryFolder()), Texts{}) << "the first pass tidies up";
    for (const char* job : {"Processor", "Transport", "Pressure"})
        engine.announce(job, 49, 0);
    for (int gp = 4; gp <= 7; ++gp)
        engine.announce("Processor", 49, 48);
    engine.happened("announced");
    engine.await("publishReport <<", 2);
    EXPECT_EQ(engine.messages(), (Texts{"3 write Interrupted while trying to write to file with id 5",
                                        "3 runTask Failed writing report with id 5",
                                        "4 handleExpiredTimer Discarding GP with ID 6, timer expired",
                                        "4 handleExpiredTimer Discarding GP with ID 7, timer expired",
                                        "4 finalizeReport Found file in broken state, rewinding."}));
    EXPECT_EQ(engine.reports(), (Texts{report0 + " 3", report1 + " 1 2 4"}));
    engine.announce("Transport", 55, 54);
    EXPECT_EQ(engine.messages(), Texts{"4 isValid Discarding event with gpid 8, arrived too late"});
    engine.announce("Transport", 60, 60);
    engine.await("releaseGp2 9");
    engine.stop();
    EXPECT_EQ(engine.reports(), (Texts{report1 + " 1 2 4", report2 + " 9"})) << "two are kept";
}

TEST(PmTaskManager, OpensNoPhaseOnceItIsStopped) {
    PmEngine engine;
    engine.renew();
    engine.startWorker();
    engine.stop();
    engine.announce("Processor", 0, 0);
    EXPECT_EQ(engine.tasks->queueSize(), 1U);
    EXPECT_EQ(engine.log.count(8, "Started timer"), 0) << "nothing would end it";
}

TEST(PmTaskManager, HandsAGpBackOnceWhenThereIsNoMemoryForIt) {
    constexpr std::uint64_t end = minute * 1'000'000'000;
    int failures = 0;
    for (std::size_t queued = 0; queued < 40; ++queued) {
        bool refused = true;
        for (int allocations = 0; refused; ++allocations) {
            PmEngine engine;
            engine.renew();
            for (std::size_t gp = 0; gp < queued; ++gp)
                engine.announce("Processor", 0, 0);
            engine.releaseGp = [](auto) { return 0; };
            const VorOamSpiPmEventValue_1 event{++engine.announced, "Processor of the element", end, end};
            WallClock::set(end);
            Vor::LoggingWrapper::instance().setLevel(Vor::LoggingWrapper::defaultLevel);
            allocationsLeft = allocations;
            try {
                refused = engine.tasks->pushGp(event) != 0;
            } catch (const std::bad_alloc&) {
                failures += queued > 0 ? 1 : 0;
            }
            allocationsLeft = -1;
            Vor::LoggingWrapper::instance().setLevel(Vor::LoggingWrapper::traceLevel);
            EXPECT_EQ(engine.count("releaseGp2 " + std::to_string(event.gpId)), refused ? 1 : 0);
            EXPECT_EQ(engine.tasks->queueSize(), queued + (refused ? 0 : 1));
            engine.log.clear();
            engine.announce("Processor", 0, 0);
            EXPECT_EQ(engine.log.count(8, "Started timer"), refused && queued == 0 ? 1 : 0);
        }
    }
    EXPECT_GT(failures, 2 * 39) << "a holder and its text each time, and the queue's growth";
}

TEST_P(PmTaskManagerTurn, KeepsThePhasesApart) {
    const Texts row = goldenTable("turns.txt").at(GetParam());
    const int gps = std::stoi(row[1]);
    PmEngine engine;
    bool isOver = false;
    engine.onHappening = [&](const std::string& what) {
        if (what != row[0] || std::exchange(isOver, true))
            return;
        if (gps > 0)
            engine.await("onTimer <<");
        engine.announce("Processor", 60, 60);
    };
    engine.renew();
    for (int gp = 0; gp < gps; ++gp)
        engine.announce("Processor", 49, 0);
    engine.worker.start(*engine.tasks);
    engine.await("releaseGp2 " + std::to_string(gps + 1));
    engine.stop();
    const Texts reports = engine.reports();
    EXPECT_EQ(Poco::cat(std::string(", "), reports.begin(), reports.end()), row[2]);
    EXPECT_EQ(engine.messages(), Texts(row.begin() + 3, row.end()));
}
INSTANTIATE_TEST_SUITE_P(Happenings, PmTaskManagerTurn,
                         testing::Range<std::size_t>(0, goldenTable("turns.txt").size()));

TEST(PmTaskManager, GoesOnAfterAGpThatCannotBeWritten) {
    PmEngine engine;
    engine.renew("50", "x");
    writeFile(engine.root.temporaryFolder() / "left over", "");
    engine.startWorker();
    EXPECT_EQ(TemporaryRoot::filesIn(engine.root.temporaryFolder()), Texts{"left over"})
        << "how many may stay?";
    std::filesystem::remove_all(engine.root.temporaryFolder());
    const auto announce = [&engine](const char* job) {
        engine.messages();
        engine.announce(job, 0, 0);
        engine.await("releaseGp2 " + std::to_string(engine.announced));
        return engine.messages();
    };
    EXPECT_TRUE(announce("Processor")
                    .at(0)
                    .starts_with("3 openFile Error opening file " + engine.root.temporaryFolder().string()));
    engine.root.createReportFolders();
    engine.model->commit({{pmRootDn + ",PmJob=Transport", "reportingPeriod", {}}});
    EXPECT_EQ(announce("Transport"),
              (Texts{"3 getPeriodDuration PM Couldn't fetch 'reportingPeriod' data over MO SPI (retval: -1)",
                     "3 processGp Missing required data, skipping report with job id 2"}));
    // A period that has no name does not keep it from being written.
    engine.model->commit({{elementDn, "networkManagedElementId", {}},
                          {pmRootDn + ",PmJob=Pressure", "granularityPeriod", {std::int16_t{-5}}}});
    EXPECT_EQ(announce("Pressure"), Texts{}) << "there is a managedElementId";
    engine.model->commit({{elementDn, "managedElementId", {}}});
    EXPECT_EQ(announce("Processor"),
              Texts{"3 populateWriterWithCommonMoData Error fetching ME name from mo db"});
    engine.stop();
    EXPECT_EQ(engine.reports(),
              (Texts{"A20260305.1310+0000-1315+0000_1.xml: 3", "A20260305.1314+0000-1315+0000_.xml: 4"}));
}

}  // namespace VorTest
