// The classes of the model that the node itself looks at.
#pragma once

namespace VorNode {

inline constexpr char elementClass[] = "ManagedElement";
inline constexpr char pmClass[] = "ManagedElement,SystemFunctions,Pm";
inline constexpr char capabilitiesClass[] = "ManagedElement,SystemFunctions,Pm,PmMeasurementCapabilities";
inline constexpr char jobClass[] = "ManagedElement,SystemFunctions,Pm,PmJob";
inline constexpr char softwareVersionClass[] = "ManagedElement,SystemFunctions,SwInventory,SwVersion";

}  // namespace VorNode
