#include "PmGpData.h"

#include "PmLog.h"

namespace VorPm {

void PmGpData::release() noexcept {
    if (--_refCount != 0) {
        return;
    }
    const auto gpId = static_cast<unsigned long long>(_gpId);
    if (_pmSpi1 == nullptr && _pmSpi2 == nullptr) {
        LOG_ERROR("No PM interface found");
    } else {
        switch (handBack()) {
            case VorReturnAbsent:
                LOG_WARNING("Tried to release unrecognized gp (id %llu)", gpId);
                break;
            case VorReturnFailed:
                LOG_WARNING("Unknown error while trying to release gp (id %llu)", gpId);
                break;
            default:
                break;
        }
    }
    delete this;
}

/// A service that throws counts as one that failed: the last reference often goes in a destructor.
KelReturnT PmGpData::handBack() const noexcept {
    try {
        return _pmSpi2 != nullptr ? _pmSpi2->releaseGp(_gpId) : _pmSpi1->releaseGp(_gpId);
    } catch (...) {
        return VorReturnFailed;
    }
}

}  // namespace VorPm
