#pragma once

#include <utility>
#include <vector>

#include "Singleton.h"
#include "VorMgmtSpiPortal.h"

namespace Vor {

/// What every component shares with the framework: the portals and the registration record. `ComponentT`
/// derives from it, is held in its process-wide singleton, and provides `initialize(configPath)`,
/// `start(reason)`, `stop(reason)` and `terminate()`. The framework's thread only.
template <class ComponentT>
class KelComponent : public Singleton<ComponentT> {
  public:
    /// Registers the component and initialises it. 0 on success, -1 without an accessor or when it has no
    /// version-3 portal, else the code of the registration or of `initialize`.
    KelReturnT lcmInit(KelMgmtSpiPortalAccessor* accessor, const char* configPath) {
        if (accessor == nullptr) {
            return VorReturnFailed;
        }
        portalAccessor = accessor;
        portalV3 = static_cast<KelMgmtSpiInterfacePortal_3*>(accessor->getPortal("3"));
        portalV1 = static_cast<VorMgmtSpiInterfacePortal_1*>(accessor->getPortal("1"));
        if (portalV3 == nullptr) {
            return VorReturnFailed;
        }
        registration.providedInterfaces = terminated(provided, terminatedProvided);
        registration.dependencies = terminated(dependencies, terminatedDependencies);
        registration.optionalDependencies = terminated(optionalDependencies, terminatedOptionalDependencies);
        const KelReturnT result = portalV3->registerComponent(&registration);
        return result == VorReturnOk ? self().initialize(configPath) : result;
    }

    /// Terminates the component and unregisters it.
    void lcmTerminate() {
        self().terminate();
        if (KelMgmtSpiInterfacePortal_3* portal = std::exchange(portalV3, nullptr)) {
            portal->unregisterComponent(&registration);
        }
    }

  protected:
    using InterfaceList = std::vector<KelMgmtSpiInterface_1*>;

    /// The name and the callbacks are kept as they are given.
    KelComponent(const char* componentName, KelReturnT (*start)(KelStateChangeReason),
                 KelReturnT (*stop)(KelStateChangeReason))
        : registration{componentName, "KelMgmtSpiComponent", "2", nullptr, nullptr, start, stop, nullptr} {}

    KelMgmtSpiPortalAccessor* portalAccessor = nullptr;
    KelMgmtSpiInterfacePortal_3* portalV3 = nullptr;
    VorMgmtSpiInterfacePortal_1* portalV1 = nullptr;
    KelMgmtSpiComponent registration;
    InterfaceList provided;
    InterfaceList terminatedProvided;
    InterfaceList dependencies;
    InterfaceList terminatedDependencies;
    InterfaceList optionalDependencies;
    InterfaceList terminatedOptionalDependencies;

  private:
    ComponentT& self() { return static_cast<ComponentT&>(*this); }

    static KelMgmtSpiInterface_1** terminated(const InterfaceList& list, InterfaceList& copy) {
        copy = list;
        copy.push_back(nullptr);
        return copy.data();
    }
};

}  // namespace Vor
