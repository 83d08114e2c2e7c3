#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <thread>

#include <gtest/gtest.h>
#include <malloc.h>

#include "Framework.h"
#include "Portal.h"

namespace VorTest {
namespace {

namespace fs = std::filesystem;

std::string describe(KelMgmtSpiInterface_1** list) {
    const auto text = [](const char* part) { return std::string(part != nullptr ? part : "*"); };
    std::string texts;
    for (; *list != nullptr; ++list)
        texts += text((*list)->componentName) + " " + text((*list)->interfaceName) + " " +
                 text((*list)->interfaceVersion) + ", ";
    return texts;
}

/// What the process holds.
struct Resources {
    static long count(const char* folder) {
        return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
    }
    long threads = count("/proc/self/task"), descriptors = count("/proc/self/fd");
    std::size_t bytes = ::mallinfo2().uordblks;
};

/// The iterations and transactions that were begun and have not ended.
std::atomic<long> unended;

void countUnended(PmEngine& engine) {
    KelOamSpiTransactionMaster_1& master = engine.transactions.table();
    static const auto genuineObjects = engine.objectTable;
    static const auto genuineMaster = master;
    engine.objectTable.newMoIterator = [](auto... arguments) {
        return ++unended, genuineObjects.newMoIterator(arguments...);
    };
    engine.objectTable.finalizeMoIterator = [](auto iterator) {
        return --unended, genuineObjects.finalizeMoIterator(iterator);
    };
    master.createTransaction = [](auto... arguments) {
        return ++unended, genuineMaster.createTransaction(arguments...);
    };
    master.commitTransaction = [](auto handle) { return --unended, genuineMaster.commitTransaction(handle); };
    master.abortTransaction = [](auto handle) { return --unended, genuineMaster.abortTransaction(handle); };
}

const std::string report = "A20260305.1314+0000-1315+0000_vor-node.xml: ";

}  // namespace

TEST(PmComponent, RegistersTheSameRecordEachTime) {
    PmEngine engine;
    Framework::portals = "1";
    EXPECT_EQ(kelLCMinit(&Framework::accessor, "/"), -1);
    EXPECT_EQ(Framework::registered, nullptr);
    Framework::portals = "3";
    Framework::registrationCode = 7;
    EXPECT_EQ(kelLCMinit(&Framework::accessor, "/"), 7);
    EXPECT_EQ(engine.count("load unloading before loading configuration"), 0) << "nothing is read then";
    Framework::registrationCode = 0;
    EXPECT_EQ(kelLCMinit(&Framework::accessor, nullptr), -8);
    EXPECT_EQ(kelLCMinit(&Framework::accessor, "/dev/null/none"), -1);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(Framework::initialize(engine), 0);
        EXPECT_STREQ(Framework::registered->componentName, "VorPmComponent");
        EXPECT_STREQ(Framework::registered->interfaceName, "KelMgmtSpiComponent");
        EXPECT_STREQ(Framework::registered->interfaceVersion, "2");
        EXPECT_EQ(describe(Framework::registered->providedInterfaces), "");
        EXPECT_EQ(describe(Framework::registered->dependencies),
                  "VorPlatform KelMgmtSpiInterfacePortal 3, * KelMwSpiTrace *, * VorMwSpiLog 1, "
                  "KelOamSpiEventService KelOamSpiEventRouter 1, "
                  "KelOamSpiTransactionService KelOamSpiTransactionMaster 1, "
                  "VorOamSpiExtCmRouterService VorOamSpiManagedObject 1, ");
        EXPECT_EQ(describe(Framework::registered->optionalDependencies),
                  "* VorOamSpiPm 1, * VorOamSpiPm 2, ");
        kelLCMterminate();
        EXPECT_EQ(Framework::registered, nullptr);
        kelLCMterminate();
    }
}

TEST(PmComponent, DependsOnAPortalThatDoesNotNameItsComponent) {
    Vor::Portal::COMP_ID.componentName = nullptr;
    PmEngine engine;
    ASSERT_EQ(Framework::initialize(engine), 0);
    EXPECT_TRUE(describe(Framework::registered->dependencies).starts_with("* KelMgmtSpiInterfacePortal 3, "));
}

TEST(PmComponent, WorksFromEachStartToItsStop) {
    PmEngine engine;
    ASSERT_EQ(Framework::initialize(engine), 0);
    EXPECT_EQ(Framework::stop(), 0);
    for (int round = 1; round <= 3; ++round) {
        for (int start = 1; start < round; ++start)
            EXPECT_EQ(Framework::start(), 0) << "what is left of it is cleaned up by the next";
        EXPECT_EQ(Framework::start(), 0);
        EXPECT_FALSE(fs::is_empty(engine.root.internalRoot())) << "there is the link";
        const std::string gp = std::to_string(2 * round - 1);
        EXPECT_EQ(engine.announce("Processor", 0, 0), 0);
        engine.await("releaseGp2 " + gp);
        EXPECT_EQ(Framework::stop(), 0);
        EXPECT_EQ(engine.reports(), Texts{report + gp});
        EXPECT_EQ(engine.announce("Processor", 0, 0), -1) << "nobody listens";
    }
    EXPECT_EQ(engine.messages(), Texts{});
}

TEST(PmComponent, IsIdleWithoutPmService) {
    PmEngine engine({"VorOamSpiPm 1", "VorOamSpiPm 2"});
    ASSERT_EQ(Framework::initialize(engine), 0);
    EXPECT_EQ(Framework::start(), 0);
    EXPECT_FALSE(fs::exists(engine.root.reportFolder()));
    EXPECT_EQ(engine.read({"maxNoOfPmFiles"}), "none");
    VorPm::PmInterceptor only;
    EXPECT_EQ(only.init(), 0) << "there is no other";
    EXPECT_EQ(engine.announce("Processor", 0, 0), -1);
    EXPECT_EQ(engine.count("run >>"), 0);
    EXPECT_EQ(Framework::stop(), 0);
    EXPECT_EQ(engine.messages(), Texts{});
    only.deregisterInterceptor();
}

class PmComponentRefusal : public testing::TestWithParam<std::size_t> {};

TEST_P(PmComponentRefusal, IsExplainedAtEachStart) {
    const Texts row = goldenTable("refusals.txt").at(GetParam());
    PmEngine engine({row[0]});
    VorPm::PmInterceptor first;
    if (row[3] == "taken")
        first.init();
    else if (!row[3].empty())
        engine.root.answerWith("cd " + engine.root.path().string() + "; " + row[3]);
    Framework::portals = row[1];
    Framework::throwingVersion = row[2];
    ASSERT_EQ(Framework::initialize(engine), 0);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(Framework::start(), -1) << "on top of what is left, too";
        Texts told = engine.messages();
        told.erase(told.begin(), told.end() - std::min(std::ssize(told), std::ssize(row) - 4));
        EXPECT_EQ(told, Texts(row.begin() + 4, row.end()));
    }
    EXPECT_EQ(engine.count("setMoAttribute set maxNoOfPmFiles attribute") > 0, row[3].starts_with("case"));
    EXPECT_EQ(Framework::stop(), 0);
    EXPECT_EQ(engine.messages(), Texts{});
    first.deregisterInterceptor();
}
INSTANTIATE_TEST_SUITE_P(Faults, PmComponentRefusal,
                         testing::Range<std::size_t>(0, goldenTable("refusals.txt").size()));

TEST(PmComponent, ComesUpAndGoesDownUnderLoad) {
    constexpr int rounds = 200;
    PmEngine engine;
    engine.model->commit({{capabilitiesDn, "supportedMeasJobGps", {std::int16_t{4}, std::int16_t{3}}}});
    Poco::Event fetched;
    engine.getGp = [&, getGp = engine.getGp](auto id, auto*& records) {
        fetched.set();
        return getGp(id, records);
    };
    countUnended(engine);
    Vor::LoggingWrapper::instance().setLevel(6);
    ASSERT_EQ(Framework::initialize(engine), 0);
    // Held while an event is on its way, and here to look at what became of them.
    std::mutex announcing;
    const auto announce = [&](const std::stop_token& end) {
        while (!end.stop_requested()) {
            {
                std::lock_guard lock(announcing);
                engine.announce("Processor", 0, 0);
            }
            // The lock is not fair.
            std::this_thread::yield();
        }
    };
    const auto read = [&engine](const std::stop_token& end) {
        while (!end.stop_requested()) {
            const std::string alone = engine.read({"supportedRopPeriods"}),
                              together = engine.read({"supportedRopPeriods", "supportedMeasJobGps"});
            EXPECT_TRUE(alone == "3 4" || alone == "3 4 5 6 7 8 9") << alone;
            EXPECT_TRUE(together == "3 4/4 3" || together == "3 4 5 6 7 8 9/4 3") << together;
        }
    };
    std::vector<std::jthread> threads;
    threads.emplace_back(announce);
    Resources first, last;
    for (int round = 1; round <= rounds; ++round) {
        fetched.reset();
        ASSERT_EQ(Framework::start(), 0);
        ASSERT_TRUE(fetched.tryWait(deadline));
        ASSERT_EQ(Framework::stop(), 0);
        std::lock_guard lock(announcing);
        engine.log.clear();
        engine.expectReleases();
        for (const VorNode::GpInfo& undelivered : engine.store.unreleased())
            engine.store.withdraw(undelivered.id);
        engine.taken.clear();
        engine.happenings.clear();
        if (round == 1) {
            threads.emplace_back(read);
            threads.emplace_back(read);
            first = Resources();
        }
        last = Resources();
    }
    threads.clear();
    EXPECT_EQ(unended, 0);
    EXPECT_EQ(last.threads, first.threads);
    EXPECT_EQ(last.descriptors, first.descriptors);
    // The heap finds its size in the first rounds; what a round keeps above 1 KiB adds up to more.
    EXPECT_LT(last.bytes, first.bytes + rounds * 1024);
}

TEST(PmComponent, LetsNothingThatAPortalThrowsReachTheFramework) {
    PmEngine engine;
    KelMgmtSpiPortalAccessor throwing{[](const char*) -> void* { throw 1; }};
    EXPECT_EQ(kelLCMinit(&throwing, "/"), -1);
    EXPECT_EQ(engine.messages(), Texts{"3 kelLCMinit Unhandled Exception while initialising VorPmComponent"});
    ASSERT_EQ(Framework::initialize(engine), 0);
    Framework::portal3.unregisterComponent = [](auto*) -> KelReturnT { throw 1; };
    EXPECT_NO_THROW(kelLCMterminate());
}

TEST(PmComponent, UnsubscribesFromBothEvents) {
    PmEngine engine;
    ASSERT_EQ(Framework::initialize(engine), 0);
    ASSERT_EQ(Framework::start(), 0);
    ASSERT_EQ(Framework::stop(), 0);
    EXPECT_EQ(engine.router.send("VorOamSpiPmEventTypeGpReady_1", nullptr), 0U);
    EXPECT_EQ(engine.router.send("VorOamSpiPmEventTypeGpReady_2", nullptr), 0U);
}

TEST(PmComponent, CleansUpWhenTheProcessEndsWithoutAStop) {
    PmEngine engine;
    const auto endWithoutStop = [&engine] {
        Framework::initialize(engine);
        Framework::start();
        engine.announce("Processor", 0, 0);
        engine.await("releaseGp2 1");
        std::exit(7);
    };
    EXPECT_EXIT(endWithoutStop(), testing::ExitedWithCode(7), "");
    EXPECT_EQ(engine.reports(), Texts{report + "1"});
}

}  // namespace VorTest
