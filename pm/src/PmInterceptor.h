#pragma once

#include <set>
#include <string>
#include <vector>

#include <Poco/Mutex.h>

#include "MoAccessor.h"
#include "MoInterceptorBase.h"

namespace VorPm {

/// The class whose objects the interceptor answers for, and the attributes that matter to it.
inline constexpr char pmMeasCapsClassPath[] = "ManagedElement,SystemFunctions,Pm,PmMeasurementCapabilities";
inline constexpr char supportedMeasJobGpsAttr[] = "supportedMeasJobGps";
inline constexpr char supportedRopPeriodsAttr[] = "supportedRopPeriods";

/// Answers clients that read the measurement capabilities: where the model restricts the granularity periods
/// of measurement jobs, the ROP periods that clients see are those among the restricted ones that the
/// component supports. All else passes. Owned by the component, whose thread calls `init` and
/// `deregisterInterceptor`; the reads run on the platform's request threads, several at once.
class PmInterceptor : public VorExtCmRouterService::MoInterceptorBase {
  public:
    /// Registers the interceptor and finds the measurement capabilities. 0; the registration's code when it
    /// is refused; -1, with a message and registered, when there is no such object. Throws
    /// `Vor::VorException` when the platform offers no managed objects.
    KelReturnT init();

    /// Returns when the reads in flight have ended. Does nothing before `init`.
    void deregisterInterceptor();

    /// Results and ownership as the raw interface's; -1 when it throws.
    KelReturnT getMoAttribute(unsigned long txHandle, const char* dn, const char* attributeName,
                              VorMoAttributeValueResult_3* result) override;
    /// The same. Values are replaced in place, as many as there is room for; an answer stays as it is when
    /// the restricted periods cannot be read.
    KelReturnT getMoAttributes(unsigned long txHandle, const char* dn, const char** attributeNames,
                               VorMoAttributeValuesResult_3* result) override;

  private:
    using Enum = Vor::MoAccessor::Enum;

    KelReturnT getPmMeasCapsDn();
    /// False also when the model cannot tell.
    bool jobGpsAreRestricted() const;
    KelReturnT getCommonPeriods(unsigned long txHandle, const char* dn, VorMoAttributeValueResult_3& result);
    void narrowRopPeriods(unsigned long txHandle, const char* dn, const char** attributeNames,
                          VorMoAttributeValueContainer_3** containers);
    std::vector<Enum> readCommonValues(unsigned long txHandle, const char* dn);

    /// The number of names; `jobGpsIndex` becomes the position of the restricted periods, if they are named.
    static int getNoOfAttributes(const char** attributeNames, int& jobGpsIndex);
    /// The distinct values; none for a null container.
    static std::set<Enum> getContainerSet(VorMoAttributeValueContainer_3* container);
    /// Those of the container's periods that the component supports, ascending.
    static std::vector<Enum> getCommonValues(VorMoAttributeValueContainer_3* container);

    /// Guards the dn, which reads may need while `init` looks for it.
    mutable Poco::FastMutex _mutex;
    std::string measCapsDn;
};

}  // namespace VorPm
