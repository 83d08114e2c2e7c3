// The component framework: portals, registration and the life-cycle callbacks.
#pragma once

#include "VorSpiTypes.h"

/// Why the framework starts or stops a component; logged, not interpreted.
typedef int32_t KelStateChangeReason;

/// What a component hands over when it registers. Owned by the component, valid until it unregisters.
struct KelMgmtSpiComponent {
    const char* componentName;
    const char* interfaceName;
    const char* interfaceVersion;
    /// Null-terminated arrays.
    KelMgmtSpiInterface_1** providedInterfaces;
    KelMgmtSpiInterface_1** dependencies;
    /// Called on the framework's thread, only after a successful registration. 0 on success.
    KelReturnT (*start)(KelStateChangeReason reason);
    KelReturnT (*stop)(KelStateChangeReason reason);
    KelMgmtSpiInterface_1** optionalDependencies;
};

/// Version "1" of the management portal: looks interfaces up. Any thread.
struct VorMgmtSpiInterfacePortal_1 {
    KelMgmtSpiInterface_1 identity;
    /// Stores the interface's table of operations, owned by its service, and returns 0; another code and
    /// null when nobody offers it.
    KelReturnT (*getInterface)(const KelMgmtSpiInterface_1* identifier, KelMgmtSpiInterface_1** interface);
};

/// Version "3" of the management portal: registers components. The framework's thread.
struct KelMgmtSpiInterfacePortal_3 {
    KelMgmtSpiInterface_1 identity;
    void (*reserved1)();
    void (*reserved2)();
    KelReturnT (*registerComponent)(KelMgmtSpiComponent* component);
    KelReturnT (*unregisterComponent)(KelMgmtSpiComponent* component);
};

/// Given to a component's `kelLCMinit`; lives as long as the framework.
struct KelMgmtSpiPortalAccessor {
    /// The portal of that version ("1", "3"), or null.
    void* (*getPortal)(const char* version);
};

/// The entry points that a component's library exports under these plain names.
typedef KelReturnT (*KelLcmInitT)(KelMgmtSpiPortalAccessor* accessor, const char* configPath);
typedef void (*KelLcmTerminateT)();

static_assert(sizeof(KelMgmtSpiComponent) == 8 * sizeof(void*));
static_assert(sizeof(VorMgmtSpiInterfacePortal_1) == 4 * sizeof(void*));
static_assert(sizeof(KelMgmtSpiInterfacePortal_3) == 7 * sizeof(void*));
static_assert(sizeof(KelMgmtSpiPortalAccessor) == sizeof(void*));
