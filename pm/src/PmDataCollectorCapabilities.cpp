// The data collector's writes of what the component can do.
#include "PmAccessor.h"
#include "PmAttributeLookup.h"
#include "PmDataCollector.h"
#include "PmLog.h"
#include "PmStorage.h"
#include "VorException.h"

namespace VorPm {

using Vor::MoAccessor;

int PmDataCollector::setMaxNoOfPmFiles(const unsigned short& max) {
    return setMoAttribute<unsigned short>(pmMeasurementCapabilitiesDn, "maxNoOfPmFiles", max);
}

int PmDataCollector::setFileRPSupported(bool supported) {
    return setMoAttribute<bool>(pmMeasurementCapabilitiesDn, "fileRPSupported", supported);
}

int PmDataCollector::setJobGroupingSupport() {
    const int result = setMoAttribute<bool>(pmMeasurementCapabilitiesDn, "jobGroupingSupport", true);
    if (result == VorReturnOk) {
        jobGroupingSupported = true;
    }
    return result;
}

int PmDataCollector::setProducesUtcRopFiles(const bool& utc) {
    const int result = setMoAttribute<bool>(pmMeasurementCapabilitiesDn, "producesUtcRopFiles", utc);
    if (result == VorReturnOk) {
        utcFormatEnabled = utc;
    }
    return result;
}

int PmDataCollector::setSupportedRopPeriods() {
    try {
        if (!attributeExists(pmMeasurementCapabilitiesDn.c_str(), "supportedRopPeriods")) {
            return VorReturnAbsent;
        }
        MoAccessor accessor = openAccessor();
        accessor.setSeqAttr<MoAccessor::Enum>(pmMeasurementCapabilitiesDn, "supportedRopPeriods",
                                              getSupportedRopPeriods());
        accessor.commitTransaction();
        return VorReturnOk;
    } catch (const Vor::VorException& fault) {
        LOG_ERROR("Exception while setting attribute 'supportedRopPeriods' with reason: %s return type %d ",
                  fault.what(), fault.retCode());
    } catch (...) {
        LOG_ERROR("Problem setting 'supportedRopPeriods', unknown exception");
    }
    return VorReturnFailed;
}

int PmDataCollector::setSupportedCompressionTypes() {
    try {
        if (!attributeExists(pmMeasurementCapabilitiesDn.c_str(), "supportedCompressionTypes")) {
            return VorReturnAbsent;
        }
        MoAccessor accessor = openAccessor();
        accessor.setSeqAttr<MoAccessor::Enum>(pmMeasurementCapabilitiesDn, "supportedCompressionTypes",
                                              {MoAccessor::Enum(GZIP)});
        accessor.commitTransaction();
        LOG_TRACE("The attribute 'supportedCompressionTypes'is set to GZIP");
        compressionSupported = true;
        return VorReturnOk;
    } catch (const Vor::VorException& fault) {
        LOG_ERROR(
            "Exception while setting the attribute 'supportedCompressionTypes' with reason: %s return type "
            "%d ",
            fault.what(), fault.retCode());
    } catch (...) {
        LOG_ERROR("Unknown exception while setting the attribute 'supportedCompressionTypes'");
    }
    return VorReturnFailed;
}

int PmDataCollector::setReportFolderPathAbsolute() {
    try {
        MoAccessor accessor = openAccessor();
        accessor.setAttr<std::string>(pmMeasurementCapabilitiesDn, "fileLocation",
                                      getReportSymlinkLocation());
        accessor.setSeqAttr<MoAccessor::MoRef>(pmMeasurementCapabilitiesDn, "fileGroup", {});
        accessor.commitTransaction();
        return VorReturnOk;
    } catch (const Vor::VorException& fault) {
        LOG_ERROR("Failed fetching symlink location: %s", fault.what());
    } catch (...) {
        LOG_ERROR("Problem writing report folder name to fileGroup");
    }
    return VorReturnFailed;
}

int PmDataCollector::setReportFolderPathRelative() {
    try {
        const std::string fileMDn = getFileMDnPrefix();
        MoAccessor accessor = openAccessor();
        accessor.setAttr<MoAccessor::MoRef>(pmMeasurementCapabilitiesDn, "fileGroup",
                                            fileMDn + ",FileGroup=" + reportFilesFolderName);
        accessor.setAttr<std::string>(pmMeasurementCapabilitiesDn, "fileLocation",
                                      std::string("/") + reportFilesFolderName);
        accessor.commitTransaction();
        return VorReturnOk;
    } catch (...) {
        LOG_ERROR("Problem writing report folder name to fileGroup");
        return VorReturnFailed;
    }
}

std::string PmDataCollector::getFileMDnPrefix() {
    std::string dn;
    openAccessor().getFirstMoInstance("ManagedElement,SystemFunctions,FileM,LogicalFs", dn);
    return dn;
}

bool PmDataCollector::isFileMPresentInTarn() {
    try {
        getFileMDnPrefix();
        return true;
    } catch (const Vor::VorException& fault) {
        LOG_WARNING("isFileMPresentInTarn got exception [%s]", fault.what());
        return false;
    }
}

template <class T>
// NOLINTNEXTLINE(performance-unnecessary-value-param): what is written is the operation's own.
KelReturnT PmDataCollector::setMoAttribute(std::string dn, std::string attrName, T value) {
    try {
        MoAccessor accessor = openAccessor();
        LOG_TRACE("set %s attribute ", attrName.c_str());
        if (!attributeExists(dn.c_str(), attrName.c_str())) {
            return VorReturnAbsent;
        }
        accessor.setAttr<T>(dn, attrName, value);
        accessor.commitTransaction();
        LOG_TRACE("set %s attribute success", attrName.c_str());
        return VorReturnOk;
    } catch (const Vor::VorException& fault) {
        LOG_ERROR("Exception while setting attribute '%s' with reason: %s return type %d ", attrName.c_str(),
                  fault.what(), fault.retCode());
    } catch (...) {
        LOG_ERROR("Problem setting %s, unknown exception", attrName.c_str());
    }
    return VorReturnFailed;
}

}  // namespace VorPm
