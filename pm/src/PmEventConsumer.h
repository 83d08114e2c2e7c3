#pragma once

#include "EventConsumer.h"
#include "IPmEventManager.h"
#include "Singleton.h"
#include "VorMgmtSpiPortal.h"

namespace VorPm {

/// Subscribes to the events that announce GPs and passes them to the task manager. Process-wide. `start` and
/// `stop` run on the component's thread, `notify` on the router's threads.
class PmEventConsumer : public Vor::Singleton<PmEventConsumer> {
  public:
    virtual ~PmEventConsumer() = default;

    /// Subscribes to both event types. Always 0: a refused subscription is in the log.
    int start(KelMgmtSpiInterfacePortal_3* portal);

    /// Always 0. No `notify` of a subscription is running or will run afterwards.
    int stop();

    void notify(const char* eventType, void* value);

    /// Receives the events. Set by the component, before `start`.
    IPmEventManager* _taskManager = nullptr;

  private:
    friend class Vor::Singleton<PmEventConsumer>;
    PmEventConsumer() = default;

    Vor::EventConsumer<PmEventConsumer, 1> _gpReady1;
    Vor::EventConsumer<PmEventConsumer, 2> _gpReady2;
};

}  // namespace VorPm
