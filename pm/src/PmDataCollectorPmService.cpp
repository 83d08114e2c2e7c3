// The data collector's connection to the PM service.
#include "PmAccessor.h"
#include "PmDataCollector.h"
#include "PmLog.h"
#include "VorException.h"

namespace VorPm {

namespace {

/// The PM service of that version; null when nobody offers it.
template <class PmT>
PmT* findPmService(VorMgmtSpiInterfacePortal_1& portal, const char* version) {
    const KelMgmtSpiInterface_1 identifier{nullptr, "VorOamSpiPm", version};
    KelMgmtSpiInterface_1* interface = nullptr;
    portal.getInterface(&identifier, &interface);
    return reinterpret_cast<PmT*>(interface);
}

void storeData(PmGpData& gp, const VorOamSpiPmGpData_1* data) {
    gp._pmData = data;
}

void storeData(PmGpData& gp, const VorOamSpiPmGpData_2* data) {
    gp._pmData2 = data;
}

}  // namespace

PmDataCollector::PmDataCollector(VorMgmtSpiInterfacePortal_1& portalV1) : portal(portalV1) {}

int PmDataCollector::init() {
    pmSpi1 = findPmService<VorOamSpiPm_1>(portal, "1");
    pmSpi2 = findPmService<VorOamSpiPm_2>(portal, "2");
    if (pmSpi1 == nullptr && pmSpi2 == nullptr) {
        LOG_TRACE("No PM interface found");
        return VorReturnAbsent;
    }
    try {
        openAccessor().getFirstMoInstance("ManagedElement", meDn);
    } catch (const Vor::VorException& fault) {
        LOG_ERROR("Failed to get first instance of ManagedElement reason %s", fault.what());
        return VorReturnFailed;
    } catch (...) {
        LOG_ERROR("Failed to get first instance of ManagedElement");
        return VorReturnFailed;
    }
    return checkForRequiredTarnData();
}

int PmDataCollector::populatePmSpi(Poco::AutoPtr<PmGpData>& gp) {
    LOG_TRACE(" >> ");
    if (gp.isNull()) {
        LOG_ERROR("Request to populate null auto pointer");
        return VorReturnAbsent;
    }
    if (pmSpi2 != nullptr) {
        return fetchGpData<VorOamSpiPmGpData_2>(*pmSpi2, gp);
    }
    if (pmSpi1 != nullptr) {
        return fetchGpData<VorOamSpiPmGpData_1>(*pmSpi1, gp);
    }
    LOG_TRACE("No PM interface, ignoring");
    return VorReturnFailed;
}

template <class GpDataT, class PmT>
KelReturnT PmDataCollector::fetchGpData(PmT& pm, Poco::AutoPtr<PmGpData>& gp) {
    const GpDataT* data = nullptr;
    KelReturnT result = pm.getGp(gp->_gpId, &data);
    if (result == VorReturnOk && data == nullptr) {
        result = VorReturnFailed;
    }
    if (result != VorReturnOk) {
        LOG_ERROR("PM Couldn't fetch data over PM SPI (retval: %d)", result);
        return result;
    }
    storeData(*gp, data);
    return VorReturnOk;
}

int PmDataCollector::releaseGp(std::uint64_t gpId) {
    if (pmSpi2 != nullptr) {
        pmSpi2->releaseGp(gpId);
    } else if (pmSpi1 != nullptr) {
        pmSpi1->releaseGp(gpId);
    }
    return VorReturnOk;
}

}  // namespace VorPm
