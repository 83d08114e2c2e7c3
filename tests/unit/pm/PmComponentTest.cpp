#include <cstdlib>
#include <filesystem>

#include <gtest/gtest.h>

#include "PmComponent.h"
#include "PmEngine.h"
#include "Portal.h"

namespace VorTest {
namespace {

namespace fs = std::filesystem;

std::string portals = "13";
bool lookUpThrows = false;
KelReturnT registrationCode = 0;
KelMgmtSpiComponent* registered = nullptr;

KelReturnT lookUp(const KelMgmtSpiInterface_1* identifier, KelMgmtSpiInterface_1** interface) {
    return lookUpThrows ? throw 1 : VorNode::InterfaceRegistry::lookUp(identifier, interface);
}
KelReturnT add(KelMgmtSpiComponent* component) {
    registered = component;
    return registrationCode;
}
KelReturnT remove(KelMgmtSpiComponent* component) {
    return std::exchange(registered, nullptr) == component ? 0 : -1;
}
VorMgmtSpiInterfacePortal_1 portal1{{}, &lookUp};
KelMgmtSpiInterfacePortal_3 portal3{{}, nullptr, nullptr, &add, &remove};
KelMgmtSpiPortalAccessor accessor{[](const char* version) -> void* {
    void* portal = *version == '1' ? static_cast<void*>(&portal1) : &portal3;
    return portals.find(version) != std::string::npos ? portal : nullptr;
}};

KelReturnT initialize(const PmEngine& engine) {
    const std::string path = engine.root.path() / "component.xml";
    writeFile(path, "<VorPmComp><pmTimerExpirationTime>50</pmTimerExpirationTime></VorPmComp>");
    return kelLCMinit(&accessor, path.c_str());
}

Texts describe(KelMgmtSpiInterface_1** list) {
    const auto text = [](const char* part) { return part != nullptr ? std::string(part) + " " : "* "; };
    Texts texts;
    for (; *list != nullptr; ++list)
        texts.push_back(text((*list)->componentName) + text((*list)->interfaceName) +
                        text((*list)->interfaceVersion));
    return texts;
}

const std::string report = "A20260305.1314+0000-1315+0000_vor-node.xml: ";

}  // namespace

TEST(PmComponent, RegistersTheSameRecordEachTime) {
    PmEngine engine;
    portals = "1";
    EXPECT_EQ(kelLCMinit(&accessor, "/"), -1);
    EXPECT_EQ(registered, nullptr);
    portals = "3";
    registrationCode = 7;
    EXPECT_EQ(kelLCMinit(&accessor, "/"), 7);
    EXPECT_EQ(engine.count("load unloading before loading configuration"), 0) << "nothing is read then";
    registrationCode = 0;
    EXPECT_EQ(kelLCMinit(&accessor, nullptr), -8);
    EXPECT_EQ(kelLCMinit(&accessor, "/dev/null/none"), -1);
    Texts needed{"VorPlatform KelMgmtSpiInterfacePortal 3 ",
                 "* KelMwSpiTrace * ",
                 "* VorMwSpiLog 1 ",
                 "KelOamSpiEventService KelOamSpiEventRouter 1 ",
                 "KelOamSpiTransactionService KelOamSpiTransactionMaster 1 ",
                 "VorOamSpiExtCmRouterService VorOamSpiManagedObject 1 "};
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(initialize(engine), 0);
        EXPECT_STREQ(registered->componentName, "VorPmComponent");
        EXPECT_STREQ(registered->interfaceName, "KelMgmtSpiComponent");
        EXPECT_STREQ(registered->interfaceVersion, "2");
        EXPECT_EQ(describe(registered->providedInterfaces), Texts{});
        EXPECT_EQ(describe(registered->dependencies), needed);
        EXPECT_EQ(describe(registered->optionalDependencies),
                  (Texts{"* VorOamSpiPm 1 ", "* VorOamSpiPm 2 "}));
        kelLCMterminate();
        EXPECT_EQ(registered, nullptr);
        kelLCMterminate();
    }
}

TEST(PmComponent, WorksFromEachStartToItsStop) {
    PmEngine engine;
    ASSERT_EQ(initialize(engine), 0);
    EXPECT_EQ(registered->stop(0), 0);
    for (int round = 1; round <= 3; ++round) {
        for (int start = 1; start < round; ++start)
            EXPECT_EQ(registered->start(1), 0) << "what is left of it is cleaned up by the next";
        EXPECT_EQ(registered->start(1), 0);
        EXPECT_FALSE(fs::is_empty(engine.root.internalRoot())) << "there is the link";
        const std::string gp = std::to_string(2 * round - 1);
        EXPECT_EQ(engine.announce("Processor", 0, 0), 0);
        engine.await("releaseGp2 " + gp);
        EXPECT_EQ(registered->stop(2), 0);
        EXPECT_EQ(engine.reports(), Texts{report + gp});
        EXPECT_EQ(engine.announce("Processor", 0, 0), -1) << "nobody listens";
    }
    EXPECT_EQ(engine.messages(), Texts{});
}

TEST(PmComponent, IsIdleWithoutPmService) {
    PmEngine engine({"VorOamSpiPm 1", "VorOamSpiPm 2"});
    ASSERT_EQ(initialize(engine), 0);
    EXPECT_EQ(registered->start(1), 0);
    EXPECT_FALSE(fs::exists(engine.root.reportFolder()));
    EXPECT_EQ(engine.announce("Processor", 0, 0), -1);
    EXPECT_EQ(engine.count("run >>"), 0);
    EXPECT_EQ(registered->stop(1), 0);
    EXPECT_EQ(engine.messages(), Texts{});
}

TEST(PmComponent, TellsWhyItCannotStart) {
    auto engine = std::make_unique<PmEngine>(Texts{pmRootDn});
    const auto expectRefusal = [&engine](const std::string& message) {
        ASSERT_EQ(initialize(*engine), 0);
        EXPECT_EQ(registered->start(1), -1);
        EXPECT_EQ(engine->messages().back(), "3 start " + message);
    };
    expectRefusal("Error fetching Pm root dn or PmMeasurementCapabilities. PM will fail to start.");
    lookUpThrows = true;
    expectRefusal("Unhandled Exception while starting VorPmComponent");
    lookUpThrows = false;
    portals = "3";
    expectRefusal("Vor Exception while starting VorPmComponent: No management portal of version 1");
    portals = "13";
    engine.reset();
    engine = std::make_unique<PmEngine>();
    engine->root.answerWith("exit 1");
    expectRefusal("Error establishing storage location for PM reportfiles. PM will fail to start.");
    engine->root.answerWith("case $1 in pso) echo '" + engine->root.noBackup().string() +
                            "' ;; *) echo /no ;; esac");
    expectRefusal("Error creating symlink from internalroot to no-backup PM will fail to start.");
    engine->root.answerWith("echo '" + engine->root.internalRoot().string() + "'");
    EXPECT_EQ(registered->start(1), 0) << "on top of what is left";
    EXPECT_EQ(registered->stop(1), 0);
}

TEST(PmComponent, CleansUpWhenTheProcessEndsWithoutAStop) {
    PmEngine engine;
    const auto endWithoutStop = [&engine] {
        initialize(engine);
        registered->start(1);
        engine.announce("Processor", 0, 0);
        engine.await("releaseGp2 1");
        std::exit(7);
    };
    EXPECT_EXIT(endWithoutStop(), testing::ExitedWithCode(7), "");
    EXPECT_EQ(engine.reports(), Texts{report + "1"});
}

}  // namespace VorTest
