#pragma once

#include <vector>

#include "VorSpiTypes.h"
#include "services/Service.h"

namespace VorNode {

/// The interfaces that the node offers. Owned by the node, filled before the component is loaded and constant
/// from then on: any thread may look up.
class InterfaceRegistry : public Service<InterfaceRegistry> {
  public:
    InterfaceRegistry() = default;

    /// Offers a service's table under its own identity. The service outlives the registry.
    void offer(KelMgmtSpiInterface_1& interface) { offerAs(interface, interface); }

    /// Offers it under another identity, whose texts stay valid.
    void offerAs(const KelMgmtSpiInterface_1& identity, KelMgmtSpiInterface_1& interface);

    /// The table offered under the identity, a null component name or version matching any; null when there
    /// is none.
    KelMgmtSpiInterface_1* find(const KelMgmtSpiInterface_1& identifier) const;

    /// The look-up as a portal's operation: 0, or -2 and null when nobody offers the interface.
    static KelReturnT lookUp(const KelMgmtSpiInterface_1* identifier, KelMgmtSpiInterface_1** interface);

  private:
    struct Offer {
        KelMgmtSpiInterface_1 identity;
        KelMgmtSpiInterface_1* interface;
    };

    std::vector<Offer> _offers;
};

}  // namespace VorNode
