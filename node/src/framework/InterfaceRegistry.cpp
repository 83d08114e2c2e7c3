#include "framework/InterfaceRegistry.h"

#include <algorithm>
#include <string_view>

#include "services/Operation.h"

namespace VorNode {

namespace {

bool matches(const char* wanted, const char* offered) {
    return wanted == nullptr || (offered != nullptr && std::string_view(wanted) == offered);
}

}  // namespace

void InterfaceRegistry::offerAs(const KelMgmtSpiInterface_1& identity, KelMgmtSpiInterface_1& interface) {
    _offers.push_back({identity, &interface});
}

KelMgmtSpiInterface_1* InterfaceRegistry::find(const KelMgmtSpiInterface_1& identifier) const {
    const auto found = std::find_if(_offers.begin(), _offers.end(), [&identifier](const Offer& offer) {
        return matches(identifier.componentName, offer.identity.componentName) &&
               matches(identifier.interfaceName, offer.identity.interfaceName) &&
               matches(identifier.interfaceVersion, offer.identity.interfaceVersion);
    });
    return found != _offers.end() ? found->interface : nullptr;
}

KelReturnT InterfaceRegistry::lookUp(const KelMgmtSpiInterface_1* identifier,
                                     KelMgmtSpiInterface_1** interface) {
    return carryOut([&] {
        requirePointers(identifier, interface);
        *interface = current().find(*identifier);
        if (*interface == nullptr) {
            throw Refusal{VorReturnAbsent};
        }
    });
}

}  // namespace VorNode
