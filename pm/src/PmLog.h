// Logging within the component: the macros, and the component's subsystem.
#pragma once

#include "Logging.h"

namespace VorPm {
inline constexpr char traceSubsystem[] = "VorPm";
}
