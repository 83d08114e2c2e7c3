#include "framework/ComponentFramework.h"

#include <string_view>

#include "framework/InterfaceRegistry.h"
#include "services/Operation.h"

namespace VorNode {

namespace {

/// Why components are started and stopped here.
constexpr KelStateChangeReason dependenciesOffered = 1;
constexpr KelStateChangeReason shutdown = 2;

std::string describe(const KelMgmtSpiInterface_1& identifier) {
    const auto text = [](const char* part) {
        return part != nullptr ? std::string(part) : std::string("any");
    };
    return "(" + text(identifier.componentName) + ", " + text(identifier.interfaceName) + ", " +
           text(identifier.interfaceVersion) + ")";
}

}  // namespace

ComponentFramework::ComponentFramework(const InterfaceRegistry& registry)
    : _registry(registry),
      _portal1{{"VorPlatform", "VorMgmtSpiInterfacePortal", "1"}, &InterfaceRegistry::lookUp},
      _portal3{{"VorPlatform", "KelMgmtSpiInterfacePortal", "3"},
               nullptr,
               nullptr,
               operation<&ComponentFramework::registerComponent>,
               operation<&ComponentFramework::unregisterComponent>},
      _accessor{&ComponentFramework::getPortal} {}

void* ComponentFramework::getPortal(const char* version) {
    const std::string_view wanted = version != nullptr ? version : "";
    if (wanted == "1") {
        return &current()._portal1;
    }
    return wanted == "3" ? &current()._portal3 : nullptr;
}

void ComponentFramework::registerComponent(KelMgmtSpiComponent* component) {
    requirePointers(component);
    if (_component != nullptr) {
        throw Refusal{VorReturnFailed};
    }
    _component = component;
}

void ComponentFramework::unregisterComponent(KelMgmtSpiComponent* component) {
    if (component == nullptr || _component != component) {
        throw Refusal{VorReturnAbsent};
    }
    _component = nullptr;
}

std::optional<std::string> ComponentFramework::missingDependency() const {
    for (KelMgmtSpiInterface_1** dependency = _component->dependencies; *dependency != nullptr;
         ++dependency) {
        if (_registry.find(**dependency) == nullptr) {
            return describe(**dependency);
        }
    }
    return std::nullopt;
}

KelReturnT ComponentFramework::startComponent() {
    return _component->start(dependenciesOffered);
}

KelReturnT ComponentFramework::stopComponent() {
    return _component->stop(shutdown);
}

}  // namespace VorNode
