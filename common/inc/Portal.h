#pragma once

#include <type_traits>

#include <Poco/Mutex.h>

#include "Logging.h"
#include "VorMgmtSpiPortal.h"
#include "VorOamSpiModelRepository.h"

namespace Vor {

/// The process-wide portal through which interfaces are looked up. Any thread.
class Portal {
  public:
    using Lookup = KelReturnT (*)(const KelMgmtSpiInterface_1* identifier, KelMgmtSpiInterface_1** interface);

    Portal(const Portal&) = delete;
    Portal& operator=(const Portal&) = delete;

    /// The interface's table of operations, owned by its service; null, with a warning, when nobody offers
    /// it.
    template <class InterfaceT>
    InterfaceT* getInterface(const KelMgmtSpiInterface_1& identifier) {
        KelMgmtSpiInterface_1* interface = nullptr;
        if (find(identifier, &interface) != VorReturnOk || interface == nullptr) {
            LOG_WARNING("Interface %s not found", identifier.interfaceName);
            return nullptr;
        }
        static_assert(std::is_standard_layout_v<InterfaceT>);
        return reinterpret_cast<InterfaceT*>(interface);
    }

    // Platform operations, defined by the platform library.

    /// The identity that the platform's portal is offered under.
    static KelMgmtSpiInterface_1 COMP_ID;

    static Portal& instance();

    /// Look-ups go to `lookup` from now on, null for nowhere; what was cached is forgotten.
    void connect(Lookup lookup);

    /// 0 when found; -2 when there is nobody to ask.
    KelReturnT find(const KelMgmtSpiInterface_1& identifier, KelMgmtSpiInterface_1** interface);

    /// The model repository, looked up once and cached; null when nobody offers it.
    VorOamSpiModelRepository* modelRepository();

  private:
    Portal() = default;

    /// Guards everything below.
    Poco::FastMutex _mutex;
    Lookup _lookup = nullptr;
    VorOamSpiModelRepository* _modelRepository = nullptr;
    bool _modelRepositoryValid = false;
};

}  // namespace Vor
