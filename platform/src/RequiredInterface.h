// Look-ups of interfaces that there is no going on without.
#pragma once

#include "Portal.h"
#include "VorException.h"
#include "VorOamSpiManagedObject.h"

namespace Vor {

/// Throws `VorException` when nobody offers the interface.
template <class InterfaceT>
const InterfaceT& required(const KelMgmtSpiInterface_1& identifier) {
    const InterfaceT* interface = Portal::instance().getInterface<InterfaceT>(identifier);
    if (interface == nullptr) {
        throw VorException(VorReturnAbsent, "Interface %s not found", identifier.interfaceName);
    }
    return *interface;
}

/// The raw managed-object interface.
inline const VorOamSpiManagedObject_1& requiredManagedObjects() {
    return required<VorOamSpiManagedObject_1>({"VorOamSpiExtCmRouterService", "VorOamSpiManagedObject", "1"});
}

}  // namespace Vor
