#pragma once

#include <memory>

#include <Poco/Thread.h>

#include "KelComponent.h"
#include "PmConfigHandler.h"
#include "PmDataCollector.h"
#include "PmInterceptor.h"
#include "PmTaskManager.h"
#include "VorMgmtSpiPortal.h"

namespace VorPm {

/// The component: brings the PM function up and down as the framework says. Process-wide; the framework's
/// thread only. The configuration and the registration live as long as it does, everything else from start to
/// stop.
class VorPmComponent : public Vor::KelComponent<VorPmComponent> {
  public:
    /// A component that was not stopped is cleaned up.
    ~VorPmComponent();

    /// Loads the configuration. 0, -1 when it cannot be used, -8 without a path.
    KelReturnT initialize(const char* configPath);

    /// 0 when the PM function is up, and also when the node has no PM service: the component is idle then. -1
    /// with a message otherwise; `stop` cleans up.
    KelReturnT start(KelStateChangeReason reason);
    KelReturnT stop(KelStateChangeReason reason);

    /// Ends the subscription and the worker and gives up what `start` made. 0, or -1 with a message.
    KelReturnT cleanup();
    void terminate();

  private:
    friend class Vor::Singleton<VorPmComponent>;
    VorPmComponent();

    KelReturnT connectDataCollector();
    /// Tells clients where the reports are. 0 or -1.
    KelReturnT initializeReportPathForNBI();
    /// True when the node has file management.
    bool isFileMPresent();
    void announceCapabilities();
    void prepareReportStorage();
    void startTaskManager();

    /// Outlives the task manager, which uses it.
    std::unique_ptr<PmDataCollector> dataCollector;
    std::unique_ptr<PmTaskManager> taskManager;
    Poco::Thread taskManagerThread;
    bool taskManagerThreadStarted = false;
    PmConfigHandler configHandler;
    PmInterceptor interceptor;
};

}  // namespace VorPm

extern "C" {
/// Registers the component and loads its configuration from the file `configPath`. 0 on success; -1 without a
/// version-3 portal; the registration's or the configuration's code otherwise.
__attribute__((visibility("default"))) KelReturnT kelLCMinit(KelMgmtSpiPortalAccessor* accessor,
                                                             const char* configPath);
/// Unregisters the component, which has been stopped.
__attribute__((visibility("default"))) void kelLCMterminate();
}
