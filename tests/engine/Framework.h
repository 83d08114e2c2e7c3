#pragma once

#include <string>
#include <utility>

#include "PmComponent.h"
#include "PmEngine.h"

namespace VorTest {

/// The component framework: two portals, and the component that registers. One per process; what it answers
/// may be changed at any time.
struct Framework {
    /// The versions of the portals that there are.
    static inline std::string portals = "13";
    /// Look-ups of interfaces of this version throw.
    static inline std::string throwingVersion;
    static inline KelReturnT registrationCode = 0;
    static inline KelMgmtSpiComponent* registered = nullptr;

    static KelReturnT lookUp(const KelMgmtSpiInterface_1* identifier, KelMgmtSpiInterface_1** interface) {
        return identifier->interfaceVersion == throwingVersion
                   ? throw 1
                   : VorNode::InterfaceRegistry::lookUp(identifier, interface);
    }
    static inline VorMgmtSpiInterfacePortal_1 portal1{{}, &lookUp};
    static inline KelMgmtSpiInterfacePortal_3 portal3{
        {},
        nullptr,
        nullptr,
        [](auto* component) { return registered = component, registrationCode; },
        [](auto* component) { return std::exchange(registered, nullptr) == component ? 0 : -1; }};
    static inline KelMgmtSpiPortalAccessor accessor{[](const char* version) -> void* {
        void* portal = *version == '1' ? static_cast<void*>(&portal1) : &portal3;
        return portals.find(version) != std::string::npos ? portal : nullptr;
    }};

    /// Loads the component with that length of its phases and number of reports kept.
    static KelReturnT initialize(const PmEngine& engine, const std::string& timer = "50",
                                 const std::string& kept = "1000") {
        const std::string path = engine.root.path() / "component.xml";
        writeFile(path, "<VorPmComp><pmTimerExpirationTime>" + timer +
                            "</pmTimerExpirationTime><maxNoOfPmFiles>" + kept +
                            "</maxNoOfPmFiles></VorPmComp>");
        return kelLCMinit(&accessor, path.c_str());
    }
    static KelReturnT start() { return registered->start(1); }
    static KelReturnT stop() { return registered->stop(1); }
};

}  // namespace VorTest
