#pragma once

#include <cstdint>
#include <string>

#include <Poco/AutoPtr.h>

#include "MoAccessor.h"
#include "PmGpData.h"
#include "VorMgmtSpiPortal.h"
#include "VorOamSpiPm.h"

namespace VorPm {

/// The component's one contact with the PM service and the managed-object model. Owned by the component, made
/// at start and destroyed at stop. `init` runs on the framework's thread before the worker exists;
/// `releaseGp` and the interface pointers serve the intake and the worker, everything else the worker alone.
/// No lock: the pointers and the fixed dns are written in `init` only. Integer results: 0 success, -1
/// failure, -2 something absent.
class PmDataCollector {
  public:
    explicit PmDataCollector(VorMgmtSpiInterfacePortal_1& portal);
    PmDataCollector(const PmDataCollector&) = delete;
    PmDataCollector& operator=(const PmDataCollector&) = delete;

    // PM service.

    /// Connects to the PM service, version 2 before version 1, and finds the fixed dns. -2 without a PM
    /// service, -1 when the model lacks an object that the component needs.
    int init();

    /// Fetches the GP's measurement data into the holder; the service's code when it refuses.
    int populatePmSpi(Poco::AutoPtr<PmGpData>& gp);

    /// Hands a GP back that no holder was made for. Always 0.
    int releaseGp(std::uint64_t gpId);

    /// Null when that version is not offered.
    VorOamSpiPm_1* getVorOamSpiPm_1() { return pmSpi1; }
    VorOamSpiPm_2* getVorOamSpiPm_2() { return pmSpi2; }

    // Job and managed-element data.

    /// Fills the holder's job data from its PmJob object. The fields read before a failure stay filled.
    int populateMo(Poco::AutoPtr<PmGpData>& gp);

    /// Reads the product strings afresh, empty where the model has none.
    void fetchSwVersionAttributes();

    const std::string& getProductDesignation() const { return productDesignation; }
    const std::string& getProductNumber() const { return productNumber; }
    const std::string& getProductRevision() const { return productRevision; }
    /// Product number, blank, revision; empty unless both are known.
    const std::string& getSwVersion();
    const bool& isUtcFormatEnabled() const { return utcFormatEnabled; }

    /// A string attribute of the managed element; -1, with `out` unchanged, when it has no value.
    int getMeString(const std::string& attrName, std::string& out);

    // Capabilities, announced as attributes of the measurement-capabilities object. The framework's thread,
    // before the worker exists. 0 written, -2 the object's class has no such attribute, -1 failed, with a
    // message.

    int setMaxNoOfPmFiles(const unsigned short& max);
    int setFileRPSupported(bool supported);
    /// Switches job groups on when it succeeds.
    int setJobGroupingSupport();
    int setSupportedRopPeriods();
    /// Switches compression on when it succeeds.
    int setSupportedCompressionTypes();
    /// Takes the form of report times from `utc` when it succeeds.
    int setProducesUtcRopFiles(const bool& utc);

    /// Where clients find the reports: the path of the link, or, with file management, a file group. 0 or -1.
    int setReportFolderPathAbsolute();
    int setReportFolderPathRelative();
    /// True when the model has a logical file system.
    bool isFileMPresentInTarn();

  private:
    int checkForRequiredTarnData();
    template <class GpDataT, class PmT>
    KelReturnT fetchGpData(PmT& pm, Poco::AutoPtr<PmGpData>& gp);

    int getPeriodDuration(const std::string& jobDn, const std::string& attrName, TimePeriod& out);
    int getJobGroup(const std::string& jobDn, std::string& jobGroup);
    int getCompressionType(const std::string& jobDn, CompressionTypes& out);

    void resetAttrsToEmpty();
    int getActiveSwVersionDn();
    void fetchMeAdministrativeDataAttr();
    int getMeProductIdentity(Vor::MoAccessor::Struct& out);
    std::string fetchMeStructAttrMember(const Vor::MoAccessor::Struct& structure,
                                        const std::string& memberName);

    /// Reads an attribute of type `B` into an `A`; -1, with `out` unchanged, when it cannot be read or has no
    /// value.
    template <class A, class B>
    KelReturnT getAnyAttribute(const std::string& dn, const std::string& attrName, A& out);

    /// Writes an attribute in a transaction of its own.
    template <class T>
    KelReturnT setMoAttribute(std::string dn, std::string attrName, T value);
    /// The dn of the logical file system. Throws `Vor::VorException` when there is none.
    std::string getFileMDnPrefix();

    VorMgmtSpiInterfacePortal_1& portal;
    VorOamSpiPm_1* pmSpi1 = nullptr;
    VorOamSpiPm_2* pmSpi2 = nullptr;
    std::string meDn;
    std::string pmRootDn;
    std::string pmMeasurementCapabilitiesDn;
    std::string swInventoryDn;
    std::string activeSwVersionDn;
    std::string productDesignation;
    std::string productNumber;
    std::string productRevision;
    std::string swVersion;
    bool jobGroupingSupported = false;
    bool compressionSupported = false;
    bool utcFormatEnabled = false;
};

}  // namespace VorPm
