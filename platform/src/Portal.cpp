#include "Portal.h"

namespace Vor {

KelMgmtSpiInterface_1 Portal::COMP_ID = {"VorPlatform", "KelMgmtSpiInterfacePortal", "3"};

Portal& Portal::instance() {
    static Portal portal;
    return portal;
}

void Portal::connect(Lookup lookup) {
    Poco::FastMutex::ScopedLock lock(_mutex);
    _lookup = lookup;
    _modelRepository = nullptr;
    _modelRepositoryValid = false;
}

KelReturnT Portal::find(const KelMgmtSpiInterface_1& identifier, KelMgmtSpiInterface_1** interface) {
    Lookup lookup = nullptr;
    {
        Poco::FastMutex::ScopedLock lock(_mutex);
        lookup = _lookup;
    }
    return lookup != nullptr ? lookup(&identifier, interface) : VorReturnAbsent;
}

VorOamSpiModelRepository* Portal::modelRepository() {
    static const KelMgmtSpiInterface_1 identifier{"VorOamSpiModelRepositoryService",
                                                  "VorOamSpiModelRepository", "2"};
    Poco::FastMutex::ScopedLock lock(_mutex);
    if (!_modelRepositoryValid && _lookup != nullptr) {
        KelMgmtSpiInterface_1* interface = nullptr;
        _modelRepositoryValid = _lookup(&identifier, &interface) == VorReturnOk && interface != nullptr;
        _modelRepository = reinterpret_cast<VorOamSpiModelRepository*>(interface);
    }
    return _modelRepositoryValid ? _modelRepository : nullptr;
}

}  // namespace Vor
