#include "PmEventConsumer.h"

#include "PmLog.h"

namespace VorPm {

int PmEventConsumer::start(KelMgmtSpiInterfacePortal_3* /*portal*/) {
    LOG_TRACE("Trying to start PmEventConsumer...");
    _gpReady1.start({}, &PmEventConsumer::notify, *this, "VorOamSpiPmEventTypeGpReady_1");
    _gpReady2.start({}, &PmEventConsumer::notify, *this, "VorOamSpiPmEventTypeGpReady_2");
    LOG_TRACE("PmEventConsumer::start Started! retval %d", VorReturnOk);
    return VorReturnOk;
}

void PmEventConsumer::notify(const char* eventType, void* value) {
    LOG_TRACE("PmEventConsumer::notify Entered! with eventType %s",
              eventType != nullptr ? eventType : "(null)");
    if (eventType == nullptr || value == nullptr) {
        LOG_ERROR("Parameter error");
        return;
    }
    if (_taskManager == nullptr) {
        LOG_ERROR("Notify Called without taskmanager set");
        return;
    }
    const auto& event = *static_cast<const VorOamSpiPmEventValue_1*>(value);
    LOG_TRACE("Got event with gpid %llu", static_cast<unsigned long long>(event.gpId));
    _taskManager->pushGp(event);
}

int PmEventConsumer::stop() {
    _gpReady1.stop();
    _gpReady2.stop();
    return VorReturnOk;
}

}  // namespace VorPm
