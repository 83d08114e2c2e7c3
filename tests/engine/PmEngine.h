#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <Poco/Event.h>
#include <Poco/Thread.h>

#include "Golden.h"
#include "LogCapture.h"
#include "PmConfigHandler.h"
#include "PmDataCollector.h"
#include "PmTaskManager.h"
#include "TemporaryRoot.h"
#include "WallClock.h"
#include "framework/InterfaceRegistry.h"
#include "services/EventRouter.h"
#include "services/GpStore.h"
#include "services/ManagedObjectService.h"
#include "services/ModelRepositoryService.h"

namespace VorTest {

/// 2026-03-05T13:15:00Z in s since the Unix epoch.
inline constexpr std::int64_t minute = 1'772'716'500;
inline constexpr long deadline = 60'000;
inline constexpr char workerEnded[] = "run Unexpected exception is received, PM service is stopped";

inline const std::string elementDn = "ManagedElement=1", pmRootDn = elementDn + ",SystemFunctions=1,Pm=1",
                         inventoryDn = elementDn + ",SystemFunctions=1,SwInventory=1",
                         capabilitiesDn = pmRootDn + ",PmMeasurementCapabilities=1";

/// The node's services, over its own model, as the component's platform, and the engine on it: collector,
/// task manager, worker. The end checks that every GP taken was handed back exactly once. One at a time.
struct PmEngine {
    /// Lacks these objects, by dn, and interfaces, such as "VorOamSpiPm 2".
    explicit PmEngine(const Texts& without = {});
    ~PmEngine();

    /// Makes a task manager, in place of the one there, with these settings.
    void renew(const std::string& timer = "50", const std::string& maxNoOfPmFiles = "1000");
    /// Returns after the worker's first pass.
    void startWorker();
    void stop();
    /// Announces the next GP, ids ascend from 1, to the task manager or, while there is none, to the router.
    /// Its one value is its id. `now`, which the clock is set to, and `end` are in s after `minute`.
    KelReturnT announce(const std::string& job, std::int64_t now, std::int64_t end);
    /// What a client reads of the measurement capabilities, or of another object: values, "none" for no
    /// container, "/" between attributes; "result code" when it is refused.
    std::string read(const Texts& attributes, const std::string& dn = capabilitiesDn) const;
    /// Waits until it has happened so often: "operation text" of a line, "getGp2 id", "releaseGp1 id" and the
    /// like.
    void await(const std::string& what, int times = 1);
    int count(const std::string& what);
    /// The same; a worker that has ended is not waited for.
    void awaitUnlessEnded(const std::string& what, int times = 1);
    void expectReleases();
    void happened(const std::string& what);
    /// "level operation text" of the messages since the last call.
    Texts messages() { return log.takeMessages(); }
    /// "name: ids" of the published reports, which have to be whole.
    Texts reports() const;

    std::mutex mutex;
    std::condition_variable hasHappened;
    std::map<std::string, int> happenings;
    std::uint64_t announced = 0;
    std::vector<std::uint64_t> taken;
    /// Called on the thread of what happens, before it counts. Set before there are threads.
    std::function<void(const std::string& what)> onHappening;
    TemporaryRoot root;
    LogCapture log;
    const std::unique_ptr<VorNode::Model> model;
    VorNode::TransactionService transactions{*model};
    VorNode::ManagedObjectService objects{*model, transactions};
    VorNode::ModelRepositoryService repository{*model};
    VorNode::EventRouter router;
    VorNode::PmServiceListener listener;
    VorNode::GpStore store{listener};
    VorNode::InterfaceRegistry registry;
    VorMgmtSpiInterfacePortal_1 portal{{}, &VorNode::InterfaceRegistry::lookUp};
    /// What is offered; a test may replace operations.
    VorOamSpiManagedObject_1 objectTable = objects.table();
    VorOamSpiEventRouter_1 routerTable = router.table();
    VorOamSpiPm_1 pm1;
    VorOamSpiPm_2 pm2;
    std::function<KelReturnT(std::uint64_t gpId, const VorNode::GpRecords*& records)> getGp;
    std::function<KelReturnT(std::uint64_t gpId)> releaseGp;
    WallClock clock{minute * 1'000'000'000};
    VorPm::PmConfigHandler config;
    VorPm::PmDataCollector collector{portal};
    std::unique_ptr<VorPm::PmTaskManager> tasks;
    Poco::Thread worker;
};

}  // namespace VorTest
