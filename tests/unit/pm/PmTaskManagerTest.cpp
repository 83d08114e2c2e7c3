#include <filesystem>

#include <gtest/gtest.h>

#include "PmEngine.h"

namespace VorTest {
namespace {

const std::string report0 = "A20260305.1310+0000-1315+0000_vor-node.xml:";
const std::string report1 = "A20260305.1314+0000-1315+0000_vor-node.xml:";
const std::string report2 = "A20260305.1315+0000-1316+0000_vor-node.xml:";

/// An engine whose worker waits in the fetch of one GP until it is let go.
struct HeldEngine : PmEngine {
    explicit HeldEngine(std::uint64_t gp) {
        getGp = [this, gp, fetch = getGp](auto id, auto*& records) {
            if (id == gp) {
                held.set();
                letGo.wait(deadline);
            }
            return fetch(id, records);
        };
    }
    Poco::Event held, letGo;
};

}  // namespace

TEST(PmTaskManager, JudgesAnnouncementsByTheClockAndArmsTheTimerOnce) {
    constexpr int taken = 0, refused = -1, late = -2;
    constexpr std::int64_t wrap = std::int64_t{1} << 32, after2106 = 71'582'789 * 60LL;
    const struct {
        const char* timer;  // none: the phase goes on
        std::int64_t now, end;
        int outcome;  // or the seconds that the timer is set to
        std::size_t warnings;
        // clang-format off
    } rows[] = {
        {"50", 12, 0, 38, 0}, {"", 30, 0, taken, 0}, {"", 55, 55, taken, 0}, {"", 50, 0, refused, 0},
        {"50", 0, 0, 50, 0}, {"50", 49, 0, 1, 0}, {"50", 50, 0, refused, 0}, {"50", 50, 50, late, 0},
        {"50", 13, 12, 37, 0}, {"50", 13, 14, 37, 0}, {"50", 15, 13, refused, 0}, {"50", 15, 17, refused, 0},
        {"50", 30, -60, refused, 0}, {"50", 12, 12 + wrap, refused, 0}, {"50", after2106, after2106, 50, 0},
        {"1", 0, 0, 1, 0}, {"1", 2, 0, refused, 0}, {"0", 2, 0, 48, 2}, {"51", 2, 2, 48, 1}, {"-3", 60, 2, refused, 2}};
    // clang-format on
    PmEngine engine;
    std::size_t queued = 0;
    for (const auto& [timer, now, end, outcome, warnings] : rows) {
        if (*timer != '\0')
            engine.renew(timer), queued = 0;
        ASSERT_EQ(engine.announce("Processor", now, end), 0);
        Texts expected(warnings,
                       "4 getTimerFromConfigOrDefault pmTimerExpirationTime in VOR PM configuration out of "
                       "range [0 - 50].Setting to default 50 seconds");
        const std::string discarding =
            "4 isValid Discarding event with gpid " + std::to_string(engine.announced);
        if (outcome == refused)
            expected.push_back(discarding + " and gpEndTime " + std::to_string(minute + end) +
                               " (VOR time stamp: " + std::to_string(minute + now) + ")");
        if (outcome == late)
            expected.push_back(discarding + ", arrived too late");
        const std::string armed = "Started timer set to " + std::to_string(outcome) + " seconds from now";
        queued += outcome >= 0 ? 1U : 0U;
        EXPECT_EQ(engine.tasks->queueSize(), queued) << now << " " << end;
        EXPECT_EQ(engine.log.count(8, "Started timer set to "), outcome > 0) << now << " " << end;
        EXPECT_EQ(engine.log.count(8, armed), outcome > 0) << now << " " << end;
        EXPECT_EQ(engine.messages(), expected) << now << " " << end;
    }
}

TEST(PmTaskManager, PublishesTheReportsOfEachPhaseTogether) {
    HeldEngine engine(5);
    engine.renew("50", "2");
    writeFile(engine.root.temporaryFolder() / "left over", "");
    engine.startWorker();
    EXPECT_EQ(TemporaryRoot::filesIn(engine.root.temporaryFolder()), Texts{}) << "the first pass tidies up";
    for (const char* job : {"Processor", "Transport", "Pressure"})
        engine.announce(job, 49, 0);
    for (int gp = 4; gp <= 7; ++gp)
        engine.announce("Processor", 49, 48);
    engine.held.wait(deadline);
    EXPECT_EQ(engine.reports(), Texts{}) << "nothing before the phase has ended";
    engine.await("onTimer <<");
    EXPECT_EQ(engine.tasks->queueSize(), 2U);
    engine.letGo.set();
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
    EXPECT_EQ(engine.count("getWriter New report writer for key (PT60S)"), 2);
    EXPECT_EQ(engine.count("getWriter New report writer for key (PT300S)"), 1);
}

TEST(PmTaskManager, KeepsReportsOfAnEndedPhaseApartFromTheNextOnes) {
    HeldEngine engine(2);
    engine.renew();
    engine.startWorker();
    for (int gp = 1; gp <= 3; ++gp)
        engine.announce("Processor", 49, 0);
    engine.held.wait(deadline);
    engine.await("onTimer <<");
    engine.announce("Processor", 60, 60);
    engine.letGo.set();
    engine.await("releaseGp2 4");
    engine.stop();
    EXPECT_EQ(engine.reports(), (Texts{report1 + " 1", report2 + " 4"}));
    EXPECT_EQ(engine.count("handleExpiredTimer Discarding GP with ID 3, timer expired"), 1);
}

TEST(PmTaskManager, KeepsWhatTheNextPhaseBringsWhileTheLastOneIsCleared) {
    PmEngine engine;
    bool announced = false;
    engine.onHappening = [&](const std::string& what) {
        if (what == "handleExpiredTimer >>" && !std::exchange(announced, true))
            engine.announce("Processor", 0, 0);
    };
    engine.renew();
    engine.startWorker();
    engine.await("releaseGp2 1");
    engine.stop();
    EXPECT_EQ(engine.reports(), Texts{report1 + " 1"});
    EXPECT_EQ(engine.messages(), Texts{});
}

TEST(PmTaskManager, DropsAGpWhosePhaseEndsBeforeItsWriterIsFound) {
    PmEngine engine;
    engine.onHappening = [&](const std::string& what) {
        if (what == "populateMo >>" && engine.announced == 1) {
            engine.await("onTimer <<");
            engine.announce("Processor", 60, 60);
        }
    };
    engine.renew();
    engine.startWorker();
    engine.announce("Processor", 49, 0);
    engine.await("releaseGp2 2");
    engine.stop();
    EXPECT_EQ(engine.reports(), Texts{report2 + " 2"});
    EXPECT_EQ(engine.messages(), Texts{});
}

TEST(PmTaskManager, PublishesWhatIsCompleteWhenItIsStopped) {
    HeldEngine engine(2);
    engine.renew();
    engine.startWorker();
    for (int gp = 1; gp <= 3; ++gp)
        engine.announce("Processor", 0, 0);
    engine.held.wait(deadline);
    EXPECT_EQ(engine.tasks->stop(), 0);
    engine.letGo.set();
    engine.stop();
    EXPECT_EQ(engine.reports(), Texts{report1 + " 1"});
    EXPECT_EQ(engine.tasks->queueSize(), 1U);

    engine.renew();
    engine.startWorker();
    engine.stop();
    engine.announce("Processor", 60, 60);
    EXPECT_EQ(engine.tasks->queueSize(), 1U);
    EXPECT_EQ(engine.log.count(8, "Started timer"), 1)
        << "nothing would end a phase that begins after the stop";
}

TEST(PmTaskManager, GoesOnAfterAGpThatCannotBeWritten) {
    PmEngine engine;
    engine.getGp = [fetch = engine.getGp](auto id, auto*& records) {
        return id == 5 ? 5 : fetch(id, records);
    };
    engine.renew("50", "x");
    writeFile(engine.root.temporaryFolder() / "left over", "");
    engine.startWorker();
    EXPECT_EQ(TemporaryRoot::filesIn(engine.root.temporaryFolder()), Texts{"left over"})
        << "how many may stay?";
    engine.messages();
    std::filesystem::remove_all(engine.root.temporaryFolder());
    engine.announce("Processor", 0, 0);
    engine.announce("Nobody", 0, 0);
    engine.await("releaseGp2 2");
    const Texts messages = engine.messages();
    EXPECT_EQ(messages.at(0).find("3 openFile Error opening file " + engine.root.temporaryFolder().string()),
              0U);
    EXPECT_EQ(messages.back(), "3 processGp Missing required data, skipping report with job id 2");
    engine.root.createReportFolders();
    engine.model->commit({{elementDn, "networkManagedElementId", {}}});
    engine.announce("Pressure", 0, 0);
    engine.await("releaseGp2 3");
    EXPECT_EQ(engine.messages(), Texts{}) << "there is a managedElementId";
    engine.model->commit({{elementDn, "managedElementId", {}}});
    engine.announce("Processor", 0, 0);
    engine.await("releaseGp2 4");
    EXPECT_EQ(engine.messages(), Texts{"3 populateWriterWithCommonMoData Error fetching ME name from mo db"});
    engine.announce("Processor", 0, 0);
    engine.await("releaseGp2 5");
    EXPECT_EQ(engine.messages(), (Texts{"3 fetchGpData PM Couldn't fetch data over PM SPI (retval: 5)",
                                        "3 runTask Error populating GpData, retval 5, gpid 5"}));
    engine.stop();
    EXPECT_EQ(engine.reports(),
              (Texts{"A20260305.1310+0000-1315+0000_1.xml: 3", "A20260305.1314+0000-1315+0000_.xml: 4"}));
}

TEST(PmTaskManager, OutlivesItsWorker) {
    PmEngine engine;
    engine.getGp = [fetch = engine.getGp](auto id, auto*& records) {
        return id == 2 ? throw 1 : fetch(id, records);
    };
    engine.renew();
    engine.startWorker();
    engine.announce("Processor", 0, 0);
    engine.announce("Transport", 0, 0);
    engine.worker.join();
    EXPECT_EQ(engine.messages(), Texts{"3 run Unexpected exception is received, PM service is stopped"});
    EXPECT_EQ(engine.announce("Processor", 0, 0), 0);
    EXPECT_EQ(engine.tasks->queueSize(), 1U);
    EXPECT_EQ(engine.reports(), Texts{});
    engine.tasks.reset();
    EXPECT_EQ(engine.reports(), Texts{report1 + " 1"});
}

TEST(PmTaskManager, RefusesGpsWithoutPmService) {
    PmEngine engine({"VorOamSpiPm 1", "VorOamSpiPm 2"});
    engine.renew();
    EXPECT_EQ(engine.announce("Processor", 0, 0), -2);
    EXPECT_EQ(engine.messages(), Texts{"3 pushGp No PM interface found"});
    EXPECT_EQ(engine.tasks->queueSize(), 0U);
}

}  // namespace VorTest
