#include "PmComponent.h"

#include <stdexcept>
#include <string_view>

#include "PmEventConsumer.h"
#include "PmLog.h"
#include "PmUtils.h"
#include "Portal.h"
#include "VorException.h"

namespace VorPm {

namespace {

constexpr char componentName[] = "VorPmComponent";
constexpr KelReturnT noConfigurationPath = -8;

KelMgmtSpiInterface_1 requiredInterfaces[] = {
    {nullptr, "KelMwSpiTrace", nullptr},
    {nullptr, "VorMwSpiLog", "1"},
    {"KelOamSpiEventService", "KelOamSpiEventRouter", "1"},
    {"KelOamSpiTransactionService", "KelOamSpiTransactionMaster", "1"},
    {"VorOamSpiExtCmRouterService", "VorOamSpiManagedObject", "1"},
};
KelMgmtSpiInterface_1 optionalInterfaces[] = {
    {nullptr, "VorOamSpiPm", "1"},
    {nullptr, "VorOamSpiPm", "2"},
};

KelMgmtSpiInterface_1 fileManagement = {"VorFileManagementComponent", "VorOamSpiManagedObject", "3"};

/// A step of the start failed in a way that leaves no choice but to refuse the start.
class StartRefused : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The same; the step has logged why.
class StartRefusedAndLogged {};

/// A capability that is announced at start.
struct Capability {
    /// 0, or the write's failure. Throws `StartRefusedAndLogged` when the setting that is written cannot be
    /// read.
    KelReturnT (*announce)(PmDataCollector& collector, PmConfigHandler& settings);
    /// The message when the model has no such attribute; null when it must have it.
    const char* absent;
    const char* failed;
};

/// In the order in which they are announced.
constexpr Capability capabilities[] = {
    {[](PmDataCollector& collector, PmConfigHandler& settings) -> KelReturnT {
         unsigned short max = 0;
         if (settings.getMaxNoOfPmFiles(max) != VorReturnOk) {
             throw StartRefusedAndLogged();
         }
         return collector.setMaxNoOfPmFiles(max);
     },
     nullptr, "Error setting maxNoOfPmFiles attribute. PM will fail to start."},
    {[](PmDataCollector& collector, PmConfigHandler&) -> KelReturnT {
         return collector.setFileRPSupported(false);
     },
     "The fileRPSupported attribute does not exist. Assuming PM 1.2 functionality.",
     "Error setting fileRPSupported attribute. PM will fail to start."},
    {[](PmDataCollector& collector, PmConfigHandler&) -> KelReturnT {
         return collector.setJobGroupingSupport();
     },
     "The PmCapabilities::jobGroupingSupport attribute does not exist. JobGrouping will be disabled",
     "Error setting jobGroupingSupport attribute. PM will fail to start."},
    {[](PmDataCollector& collector, PmConfigHandler&) -> KelReturnT {
         return collector.setSupportedRopPeriods();
     },
     "The PmCapabilities::supportedRopPeriods attribute does not exist. Supported ROP Periods will not be "
     "visible over the NBI",
     "Error setting supportedRopPeriods attribute. PM will fail to start."},
    {[](PmDataCollector& collector, PmConfigHandler&) -> KelReturnT {
         return collector.setSupportedCompressionTypes();
     },
     "The attribute 'supportedCompressionTypes' does not exist. PM ROP file compression will be disabled.",
     "Unable to set the attribute 'supportedCompressionTypes'. PM will fail to start."},
    {[](PmDataCollector& collector, PmConfigHandler& settings) -> KelReturnT {
         bool utc = false;
         if (settings.getBooleanValueFromCfg("produceRopFilesInUtcFormat", utc) != VorReturnOk) {
             throw StartRefusedAndLogged();
         }
         return collector.setProducesUtcRopFiles(utc);
     },
     "The attribute 'producesUtcRopFiles' does not exist. PM ROP files will be generated in LocalTime format "
     "only.",
     "Error setting 'producesUtcRopFiles' attribute. PM will fail to start."},
};

/// The framework's callbacks: nothing thrown may reach it.
KelReturnT startCallback(KelStateChangeReason reason) {
    try {
        return VorPmComponent::instance().start(reason);
    } catch (...) {
        LOG_ERROR("Unhandled Exception while starting VorPmComponent");
        return VorReturnFailed;
    }
}

KelReturnT stopCallback(KelStateChangeReason reason) {
    try {
        return VorPmComponent::instance().stop(reason);
    } catch (...) {
        LOG_ERROR("Caught unhandled exception when stopping VorPmComponent");
        return VorReturnFailed;
    }
}

/// An identity without a component's name is somebody else's.
bool isOwn(const KelMgmtSpiInterface_1& identity) {
    return identity.componentName != nullptr && std::string_view(identity.componentName) == componentName;
}

}  // namespace

VorPmComponent::VorPmComponent() : KelComponent(componentName, &startCallback, &stopCallback) {
    // Both are used by the destructor and have to outlive it.
    Vor::LoggingWrapper::instance();
    PmEventConsumer::instance();
    if (!isOwn(Vor::Portal::COMP_ID)) {
        dependencies.push_back(&Vor::Portal::COMP_ID);
    }
    for (KelMgmtSpiInterface_1& interface : requiredInterfaces) {
        dependencies.push_back(&interface);
    }
    for (KelMgmtSpiInterface_1& interface : optionalInterfaces) {
        optionalDependencies.push_back(&interface);
    }
}

VorPmComponent::~VorPmComponent() {
    cleanup();
    interceptor.deregisterInterceptor();
}

KelReturnT VorPmComponent::initialize(const char* configPath) {
    LOG_TRACE(" >> ");
    if (configPath == nullptr) {
        return noConfigurationPath;
    }
    const KelReturnT result = configHandler.load(configPath);
    LOG_TRACE(" << ");
    return result;
}

KelReturnT VorPmComponent::start(KelStateChangeReason reason) {
    LOG_TRACE(" >> Reason: %d", reason);
    LOG_TRACE("Starting Pm Component");
    try {
        if (dataCollector != nullptr && cleanup() == VorReturnFailed) {
            throw StartRefusedAndLogged();
        }
        interceptor.deregisterInterceptor();
        if (connectDataCollector() == VorReturnAbsent) {
            return VorReturnOk;
        }
        if (interceptor.init() != VorReturnOk) {
            throw StartRefused("Error registering PM MOC to interceptor. PM will fail to start.");
        }
        if (initializeReportPathForNBI() != VorReturnOk) {
            LOG_WARNING("initializeReportPathForNBI failed to set either fileGroup or fileLocation");
        }
        announceCapabilities();
        prepareReportStorage();
        startTaskManager();
        const KelReturnT result = PmEventConsumer::instance().start(portalV3);
        if (result != VorReturnOk) {
            LOG_ERROR("Failed to start event consumer! (retval: %d)", result);
            cleanup();
            return result;
        }
    } catch (const StartRefused& refusal) {
        LOG_ERROR("%s", refusal.what());
        return VorReturnFailed;
    } catch (const StartRefusedAndLogged&) {
        return VorReturnFailed;
    } catch (const Vor::VorException& fault) {
        LOG_ERROR("Vor Exception while starting VorPmComponent: %s", fault.what());
        cleanup();
        return VorReturnFailed;
    } catch (...) {
        LOG_ERROR("Unhandled Exception while starting VorPmComponent");
        cleanup();
        return VorReturnFailed;
    }
    LOG_TRACE(" << Retval: %d", VorReturnOk);
    return VorReturnOk;
}

/// -2 when the node has no PM service.
KelReturnT VorPmComponent::connectDataCollector() {
    if (portalV1 == nullptr) {
        throw Vor::VorException("No management portal of version 1");
    }
    dataCollector = std::make_unique<PmDataCollector>(*portalV1);
    const KelReturnT result = dataCollector->init();
    if (result != VorReturnOk) {
        dataCollector.reset();
    }
    if (result == VorReturnFailed) {
        throw StartRefused("Error fetching Pm root dn or PmMeasurementCapabilities. PM will fail to start.");
    }
    return result;
}

KelReturnT VorPmComponent::initializeReportPathForNBI() {
    LOG_TRACE(" >> ");
    const bool relative = isFileMPresent();
    KelReturnT result = VorReturnFailed;
    try {
        if (relative) {
            LOG_TRACE("FileM is alive sets fileGroup to: %s", getReportSymlinkLocation().c_str());
            result = dataCollector->setReportFolderPathRelative();
        } else {
            LOG_TRACE("Sets fileLocation to: %s", getReportSymlinkLocation().c_str());
            result = dataCollector->setReportFolderPathAbsolute();
        }
    } catch (const std::exception& fault) {
        LOG_ERROR("PM exception: %s", fault.what());
    }
    LOG_TRACE(" << ");
    return result;
}

bool VorPmComponent::isFileMPresent() {
    KelMgmtSpiInterface_1* interface = nullptr;
    if (portalV1->getInterface(&fileManagement, &interface) != VorReturnOk || interface == nullptr) {
        LOG_TRACE("Could not find FilM managed object interface, assuming it is not installed");
        return false;
    }
    if (!dataCollector->isFileMPresentInTarn()) {
        LOG_TRACE("FileM not found in Tarn");
        return false;
    }
    return true;
}

void VorPmComponent::announceCapabilities() {
    for (const Capability& capability : capabilities) {
        const KelReturnT result = capability.announce(*dataCollector, configHandler);
        if (result == VorReturnAbsent && capability.absent != nullptr) {
            LOG_INFORMATION_IN("start", "%s", capability.absent);
        } else if (result != VorReturnOk) {
            throw StartRefused(capability.failed);
        }
    }
}

void VorPmComponent::prepareReportStorage() {
    if (!createFoldersForReportStorage()) {
        throw StartRefused("Error establishing storage location for PM reportfiles. PM will fail to start.");
    }
    if (!createSymLinkForNobackup()) {
        throw StartRefused("Error creating symlink from internalroot to no-backup PM will fail to start.");
    }
}

void VorPmComponent::startTaskManager() {
    taskManager = std::make_unique<PmTaskManager>(*dataCollector, configHandler);
    taskManagerThread.start(*taskManager);
    taskManagerThreadStarted = true;
    PmEventConsumer::instance()._taskManager = taskManager.get();
}

KelReturnT VorPmComponent::stop(KelStateChangeReason /*reason*/) {
    LOG_TRACE(" >> ");
    const KelReturnT result = cleanup();
    interceptor.deregisterInterceptor();
    LOG_TRACE(" << Retval: %d", result);
    return result;
}

KelReturnT VorPmComponent::cleanup() {
    try {
        KelReturnT result = PmEventConsumer::instance().stop();
        if (taskManager != nullptr) {
            const KelReturnT stopped = taskManager->stop();
            if (result == VorReturnOk) {
                result = stopped;
            }
            if (taskManagerThreadStarted) {
                taskManagerThread.join();
                taskManagerThreadStarted = false;
            }
            taskManager.reset();
        }
        dataCollector.reset();
        return result;
    } catch (...) {
        LOG_ERROR("Caught unhandled exception when stopping VorPmComponent");
        return VorReturnFailed;
    }
}

void VorPmComponent::terminate() {
    LOG_TRACE(" >> ");
    LOG_TRACE(" << ");
}

}  // namespace VorPm

KelReturnT kelLCMinit(KelMgmtSpiPortalAccessor* accessor, const char* configPath) {
    using VorPm::traceSubsystem;
    try {
        return VorPm::VorPmComponent::instance().lcmInit(accessor, configPath);
    } catch (...) {
        LOG_ERROR("Unhandled Exception while initialising VorPmComponent");
        return VorReturnFailed;
    }
}

void kelLCMterminate() {
    try {
        VorPm::VorPmComponent::instance().lcmTerminate();
    } catch (...) {
        // The framework's own operation failed; there is nobody to tell.
    }
}
