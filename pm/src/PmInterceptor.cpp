#include "PmInterceptor.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

#include "ExtCmInterceptorRepository.h"
#include "PmAccessor.h"
#include "PmAttributeLookup.h"
#include "PmLog.h"
#include "PmTimeTexts.h"
#include "VorException.h"

namespace VorPm {

namespace {

bool isNamed(const char* attributeName, std::string_view expected) {
    return attributeName != nullptr && attributeName == expected;
}

/// The number of values that the container has, and has room for.
std::size_t roomOf(const VorMoAttributeValueContainer_3* container) {
    return container != nullptr && container->values != nullptr ? container->valueCount : 0;
}

/// Writes the values over the container's; those that it has no room for are left out.
void replaceValues(VorMoAttributeValueContainer_3* container,
                   const std::vector<Vor::MoAccessor::Enum>& values) {
    const std::size_t count = std::min(roomOf(container), values.size());
    for (std::size_t i = 0; i < count; ++i) {
        container->values[i].number = std::int16_t{values[i]};
    }
    if (container != nullptr) {
        container->valueCount = static_cast<std::uint32_t>(count);
    }
}

}  // namespace

KelReturnT PmInterceptor::init() {
    LOG_TRACE(" >> ");
    initialize();
    const KelReturnT result = _interceptorRepository->registerClass(*this, pmMeasCapsClassPath);
    if (result != VorReturnOk) {
        // What is registered is somebody else's, and stays.
        _interceptorRepository = nullptr;
        LOG_TRACE(" << ");
        return result;
    }
    return getPmMeasCapsDn();
}

KelReturnT PmInterceptor::getPmMeasCapsDn() {
    try {
        std::string dn;
        openAccessor().getFirstMoInstance(pmMeasCapsClassPath, dn);
        Poco::FastMutex::ScopedLock lock(_mutex);
        measCapsDn = dn;
        return VorReturnOk;
    } catch (const Vor::VorException& fault) {
        LOG_ERROR("Unable to get PmMeasurementCapabilities instance %s", fault.what());
    } catch (...) {
        LOG_ERROR("Unable to get PmMeasurementCapabilities instance");
    }
    LOG_TRACE(" << ");
    return VorReturnFailed;
}

void PmInterceptor::deregisterInterceptor() {
    if (_interceptorRepository != nullptr) {
        _interceptorRepository->deregisterClass(pmMeasCapsClassPath);
        // Somebody else may register from now on.
        _interceptorRepository = nullptr;
    }
}

KelReturnT PmInterceptor::getMoAttribute(unsigned long txHandle, const char* dn, const char* attributeName,
                                         VorMoAttributeValueResult_3* result) {
    LOG_TRACE(" >> ");
    KelReturnT code = VorReturnFailed;
    try {
        code = result != nullptr && isNamed(attributeName, supportedRopPeriodsAttr) && jobGpsAreRestricted()
                   ? getCommonPeriods(txHandle, dn, *result)
                   : MoInterceptorBase::getMoAttribute(txHandle, dn, attributeName, result);
    } catch (...) {
        // Nothing thrown may reach the platform, which learns it from the code.
    }
    LOG_TRACE(" << ");
    return code;
}

/// What the client gets is the container of the restricted periods, with the common ones in it.
KelReturnT PmInterceptor::getCommonPeriods(unsigned long txHandle, const char* dn,
                                           VorMoAttributeValueResult_3& result) {
    result = {};
    Vor::MoAccessor::MoAttributeValueResult jobGps;
    const KelReturnT code = MoInterceptorBase::getMoAttribute(txHandle, dn, supportedMeasJobGpsAttr, &jobGps);
    if (code != VorReturnOk) {
        return code;
    }
    const std::vector<Enum> common = getCommonValues(jobGps.container);
    if (common.empty()) {
        result = {jobGps.release, nullptr};
        return VorReturnOk;
    }
    replaceValues(jobGps.container, common);
    result = {jobGps.release, std::exchange(jobGps.container, nullptr)};
    return VorReturnOk;
}

KelReturnT PmInterceptor::getMoAttributes(unsigned long txHandle, const char* dn, const char** attributeNames,
                                          VorMoAttributeValuesResult_3* result) {
    LOG_TRACE(" >> ");
    KelReturnT code = VorReturnFailed;
    try {
        code = MoInterceptorBase::getMoAttributes(txHandle, dn, attributeNames, result);
        if (code == VorReturnOk && result->containers != nullptr) {
            narrowRopPeriods(txHandle, dn, attributeNames, result->containers);
        }
    } catch (...) {
        // As above. What was read is given to the client even when it could not be narrowed.
    }
    LOG_TRACE(" << ");
    return code;
}

void PmInterceptor::narrowRopPeriods(unsigned long txHandle, const char* dn, const char** attributeNames,
                                     VorMoAttributeValueContainer_3** containers) {
    constexpr int notNamed = -1;
    int jobGpsIndex = notNamed;
    const int count = getNoOfAttributes(attributeNames, jobGpsIndex);
    for (int i = 0; i < count; ++i) {
        if (!isNamed(attributeNames[i], supportedRopPeriodsAttr) || !jobGpsAreRestricted()) {
            continue;
        }
        const std::vector<Enum> common = jobGpsIndex != notNamed ? getCommonValues(containers[jobGpsIndex])
                                                                 : readCommonValues(txHandle, dn);
        const std::size_t room = roomOf(containers[i]);
        if (common.size() > room) {
            LOG_WARNING("Only %zu of %zu supportedRopPeriods fit in the answer", room, common.size());
        }
        replaceValues(containers[i], common);
    }
}

/// Throws `Vor::VorException` when the restricted periods cannot be read.
std::vector<Vor::MoAccessor::Enum> PmInterceptor::readCommonValues(unsigned long txHandle, const char* dn) {
    Vor::MoAccessor::MoAttributeValueResult jobGps;
    const KelReturnT code = MoInterceptorBase::getMoAttribute(txHandle, dn, supportedMeasJobGpsAttr, &jobGps);
    if (code != VorReturnOk) {
        throw Vor::VorException(code, "Failed to read %s", supportedMeasJobGpsAttr);
    }
    return getCommonValues(jobGps.container);
}

bool PmInterceptor::jobGpsAreRestricted() const {
    std::string dn;
    {
        Poco::FastMutex::ScopedLock lock(_mutex);
        dn = measCapsDn;
    }
    try {
        return attributeExists(dn.c_str(), supportedMeasJobGpsAttr);
    } catch (...) {
        return false;
    }
}

int PmInterceptor::getNoOfAttributes(const char** attributeNames, int& jobGpsIndex) {
    int count = 0;
    for (; attributeNames != nullptr && attributeNames[count] != nullptr; ++count) {
        if (isNamed(attributeNames[count], supportedMeasJobGpsAttr)) {
            jobGpsIndex = count;
        }
    }
    return count;
}

std::set<Vor::MoAccessor::Enum> PmInterceptor::getContainerSet(VorMoAttributeValueContainer_3* container) {
    std::set<Enum> values;
    for (std::size_t i = 0; i < roomOf(container); ++i) {
        values.insert(static_cast<std::int16_t>(container->values[i].number));
    }
    return values;
}

std::vector<Vor::MoAccessor::Enum> PmInterceptor::getCommonValues(VorMoAttributeValueContainer_3* container) {
    std::vector<Enum> supported = getSupportedRopPeriods();
    std::sort(supported.begin(), supported.end());
    const std::set<Enum> offered = getContainerSet(container);
    std::vector<Enum> common;
    std::set_intersection(offered.begin(), offered.end(), supported.begin(), supported.end(),
                          std::back_inserter(common));
    return common;
}

}  // namespace VorPm
