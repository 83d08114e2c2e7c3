#pragma once

#include <optional>
#include <string>

#include "VorMgmtSpiPortal.h"
#include "services/Service.h"

namespace VorNode {

class InterfaceRegistry;

/// The portals that a component registers at and looks interfaces up through, and the component's life cycle
/// from then on. Owned by the node; the framework's thread, but look-ups come from any.
class ComponentFramework : public Service<ComponentFramework> {
  public:
    /// The registry outlives the framework.
    explicit ComponentFramework(const InterfaceRegistry& registry);

    KelMgmtSpiPortalAccessor& portalAccessor() { return _accessor; }

    /// The portal that components register at, as an interface that can be offered.
    KelMgmtSpiInterface_1& portalInterface() { return _portal3.identity; }

    bool isRegistered() const { return _component != nullptr; }

    /// The first dependency of the registered component that nobody offers, in words.
    std::optional<std::string> missingDependency() const;

    /// The registered component's own results.
    KelReturnT startComponent();
    KelReturnT stopComponent();

  private:
    static void* getPortal(const char* version);
    void registerComponent(KelMgmtSpiComponent* component);
    void unregisterComponent(KelMgmtSpiComponent* component);

    const InterfaceRegistry& _registry;
    VorMgmtSpiInterfacePortal_1 _portal1;
    KelMgmtSpiInterfacePortal_3 _portal3;
    KelMgmtSpiPortalAccessor _accessor;
    KelMgmtSpiComponent* _component = nullptr;
};

}  // namespace VorNode
