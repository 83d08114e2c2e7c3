// The data collector's reads of job and managed-element data.
#include <cstdint>

#include "PmAccessor.h"
#include "PmDataCollector.h"
#include "PmLog.h"
#include "VorException.h"

namespace VorPm {

using Vor::MoAccessor;

int PmDataCollector::checkForRequiredTarnData() {
    LOG_TRACE(" >> ");
    const char* failure = "Unable to get PM root DN";
    try {
        MoAccessor accessor = openAccessor();
        accessor.getFirstMoInstance("ManagedElement,SystemFunctions,Pm", pmRootDn);
        failure = "Unable to get PmMeasurementCapabilities";
        accessor.getFirstMoInstance("ManagedElement,SystemFunctions,Pm,PmMeasurementCapabilities",
                                    pmMeasurementCapabilitiesDn);
    } catch (const Vor::VorException& fault) {
        LOG_ERROR("%s %s", failure, fault.what());
        return VorReturnFailed;
    } catch (...) {
        LOG_ERROR("%s", failure);
        return VorReturnFailed;
    }
    LOG_TRACE(" << ");
    return VorReturnOk;
}

int PmDataCollector::populateMo(Poco::AutoPtr<PmGpData>& gp) {
    LOG_TRACE(" >> ");
    const std::string jobDn = pmRootDn + ",PmJob=" + gp->_jobId;
    if (getPeriodDuration(jobDn, "granularityPeriod", gp->_granularityPeriod) != VorReturnOk ||
        getPeriodDuration(jobDn, "reportingPeriod", gp->_reportingPeriod) != VorReturnOk) {
        LOG_TRACE(" << ");
        return VorReturnFailed;
    }
    if (jobGroupingSupported) {
        std::string jobGroup;
        if (getJobGroup(jobDn, jobGroup) != VorReturnOk) {
            LOG_TRACE(" << ");
            return VorReturnFailed;
        }
        gp->_jobGroup = jobGroup;
    }
    if (compressionSupported) {
        CompressionTypes compressionType = NO_COMPRESSION;
        if (getCompressionType(jobDn, compressionType) != VorReturnOk) {
            LOG_ERROR("PM Couldn't fetch PmJob::compressionType over MO SPI.");
            return VorReturnFailed;
        }
        LOG_TRACE("Compression type set to: %d", compressionType);
        gp->_compressionType = compressionType;
    }
    LOG_TRACE(" << ");
    return VorReturnOk;
}

int PmDataCollector::getPeriodDuration(const std::string& jobDn, const std::string& attrName,
                                       TimePeriod& out) {
    std::int16_t value = 0;
    const KelReturnT result = getAnyAttribute<std::int16_t, MoAccessor::Enum>(jobDn, attrName, value);
    if (result != VorReturnOk) {
        LOG_ERROR("PM Couldn't fetch '%s' data over MO SPI (retval: %d)", attrName.c_str(), result);
        return result;
    }
    out = static_cast<TimePeriod>(value);
    return VorReturnOk;
}

int PmDataCollector::getJobGroup(const std::string& jobDn, std::string& jobGroup) {
    static const std::string attrName = "jobGroup";
    try {
        const auto value = openAccessor().getOptionalAttr<std::string>(jobDn, attrName);
        if (value.isSet) {
            jobGroup = value.value;
        }
        return VorReturnOk;
    } catch (const Vor::VorException& fault) {
        LOG_ERROR("PM Couldn't fetch '%s' data over MO SPI . Reason: '%s'", attrName.c_str(), fault.what());
        return VorReturnFailed;
    }
}

int PmDataCollector::getCompressionType(const std::string& jobDn, CompressionTypes& out) {
    try {
        const auto value = openAccessor().getOptionalAttr<MoAccessor::Enum>(jobDn, "compressionType");
        if (value.isSet) {
            out = static_cast<CompressionTypes>(std::int16_t{value.value});
        }
        return VorReturnOk;
    } catch (const Vor::VorException& fault) {
        LOG_ERROR("%s", fault.what());
        return VorReturnFailed;
    }
}

void PmDataCollector::fetchSwVersionAttributes() {
    LOG_TRACE(" >> ");
    resetAttrsToEmpty();
    bool inventoryFound = false;
    try {
        openAccessor().getFirstMoInstance("ManagedElement,SystemFunctions,SwInventory", swInventoryDn);
        inventoryFound = true;
    } catch (...) {
        LOG_INFORMATION(
            "SwInventory was not found. The deprecated attribute ManagedElement::productIdentity will be "
            "used to fill "
            "in the swVersion in the ROP file");
    }
    if (!inventoryFound) {
        MoAccessor::Struct identity;
        if (getMeProductIdentity(identity) != VorReturnOk) {
            LOG_WARNING(
                "Failed to fetch the productIdentity value and hence the swVersion attribute of the ROP file "
                "will be "
                "empty");
        } else {
            productDesignation = fetchMeStructAttrMember(identity, "productDesignation");
            productNumber = fetchMeStructAttrMember(identity, "productNumber");
            productRevision = fetchMeStructAttrMember(identity, "productRevision");
        }
    } else if (getActiveSwVersionDn() == VorReturnOk) {
        fetchMeAdministrativeDataAttr();
    } else {
        LOG_ERROR(
            "Failed to fetch the active SwVersion on the node,hence the swVersion attribute of the ROP file "
            "will be "
            "empty");
    }
    LOG_TRACE(" << ");
}

void PmDataCollector::resetAttrsToEmpty() {
    productDesignation.clear();
    productNumber.clear();
    productRevision.clear();
    swVersion.clear();
}

int PmDataCollector::getActiveSwVersionDn() {
    return getAnyAttribute<std::string, MoAccessor::MoRef>(swInventoryDn, "active", activeSwVersionDn);
}

void PmDataCollector::fetchMeAdministrativeDataAttr() {
    MoAccessor::Struct data;
    if (getAnyAttribute<MoAccessor::Struct, MoAccessor::Struct>(activeSwVersionDn, "administrativeData",
                                                                data) != VorReturnOk) {
        LOG_WARNING(
            "Failed to fetch the administrativeData struct and hence the swVersion attribute of the ROP file "
            "will be "
            "empty");
        return;
    }
    productDesignation = fetchMeStructAttrMember(data, "productName");
    productNumber = fetchMeStructAttrMember(data, "productNumber");
    productRevision = fetchMeStructAttrMember(data, "productRevision");
}

int PmDataCollector::getMeProductIdentity(MoAccessor::Struct& out) {
    return getAnyAttribute<MoAccessor::Struct, MoAccessor::Struct>(meDn, "productIdentity", out);
}

std::string PmDataCollector::fetchMeStructAttrMember(const MoAccessor::Struct& structure,
                                                     const std::string& memberName) {
    try {
        return structure.get<std::string>(memberName);
    } catch (const Vor::VorException&) {
        LOG_WARNING("Failed to fetch the struct member %s. Value is empty", memberName.c_str());
        return {};
    }
}

const std::string& PmDataCollector::getSwVersion() {
    swVersion.clear();
    if (!productNumber.empty() && !productRevision.empty()) {
        swVersion = productNumber + " " + productRevision;
    }
    return swVersion;
}

int PmDataCollector::getMeString(const std::string& attrName, std::string& out) {
    return getAnyAttribute<std::string, std::string>(meDn, attrName, out);
}

template <class A, class B>
KelReturnT PmDataCollector::getAnyAttribute(const std::string& dn, const std::string& attrName, A& out) {
    try {
        out = static_cast<A>(openAccessor().getAttr<B>(dn, attrName));
        return VorReturnOk;
    } catch (const Vor::VorException& fault) {
        LOG_TRACE("Problem reading '%s' attribute from SPI, mo '%s'. Reason: '%s'", attrName.c_str(),
                  dn.c_str(), fault.what());
    } catch (...) {
        LOG_ERROR("Problem reading %s attribute from SPI, mo (%s)", attrName.c_str(), dn.c_str());
    }
    return VorReturnFailed;
}

}  // namespace VorPm
